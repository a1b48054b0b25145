/**
 * How deep the entities of a document are nested. An entity that refers to another costs stack when it is expanded, and
 * it may be expanded right behind its declaration, in the default value of an attribute. So the depth is known with
 * every declaration, in whatever order entities refer to each other. The time for that is proportional to their length.
 *
 * Entities that refer to each other in a circle are harmless until one is used, which the parser refuses when it comes
 * to an entity for the second time. Before that the parser may have come to each entity of the circle once. So they
 * form a ring: a strongly connected component of the graph of references. The depth of a ring is the number of its
 * members and the depth of the deepest ring behind them. A declaration joins the rings that lie on the circles that it
 * closes.
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
     * Notes that an entity is declared. References to characters and to the five entities of XML itself do not count.
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
    Entity *m_entities = nullptr; // the entities of the tree, the newest first
    unsigned m_deepest = 0;       // how deep they may be nested; 0: not known yet
    size_t m_followed = 0, m_mayFollow = size_t{1} << 20; // references, counted over all declarations
};

} // namespace kelto

#endif
