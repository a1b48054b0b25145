/**
 * How deep the entities of a document are nested: one that refers to another costs stack when it is expanded, which may
 * be right behind its declaration, in the default value of an attribute. So the depth is known with every declaration,
 * in whatever order entities refer to each other, in a time that is proportional to what they say.
 *
 * Entities that refer to each other in a circle are harmless until one is used, which the parser refuses when it comes
 * to an entity for the second time. Before that it may have come to each of the circle once. So they form a ring, which
 * is as deep as it has members, and then as deep as what these refer to: the strongly connected components of the graph
 * of references, of which a declaration joins those that lie on the circles that it closes.
 */
#ifndef KELTO_MESSAGE_GRAMMAR_ENTITY_NESTING_H
#define KELTO_MESSAGE_GRAMMAR_ENTITY_NESTING_H

#include <cstddef>
#include <string_view>

namespace kelto
{

class EntityNesting
{
public:
    EntityNesting() = default;
    ~EntityNesting();
    EntityNesting(const EntityNesting &) = delete;
    EntityNesting &operator=(const EntityNesting &) = delete;

    /**
     * An entity is declared; the five that XML itself declares and references to characters do not count in its value.
     * @return false where entities are nested deeper now than the stack of this thread bears (100 at most); where
     *         references to entities that are declared later have been followed too often; and where there is no
     *         memory.
     */
    bool add(std::string_view name, std::string_view value) noexcept;

private:
    struct Entity;
    struct Reference;

    Entity *find(std::string_view name) noexcept;
    bool refer(Entity *from, std::string_view to) noexcept;
    void closeRing(Entity *entity) noexcept;
    static void findReferrers(Entity *entity) noexcept;
    static void join(Entity *ring, Entity *joined) noexcept;
    bool deepen(Entity *ring) noexcept;

    void *m_tree = nullptr;       // of tsearch(), by name: those that refer to others or are referred to
    Entity *m_entities = nullptr; // the same, the newest first
    unsigned m_deepest = 0;       // how deep they may be nested; 0: not known yet
    size_t m_followed = 0, m_mayFollow = size_t{1} << 20; // references
};

} // namespace kelto

#endif
