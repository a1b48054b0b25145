#include "message/grammar/entity_nesting.h"

#include "platform/stack.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <search.h>
#include <utility>

// Entities are the nodes of a graph, references its edges. The depth of a ring is the number of its members and the
// depth of the deepest ring to which they refer. A declaration adds the edges of one entity, with two effects. It may
// close a ring: of the rings that the entity reaches, those that also reach the entity. And the rings that reach the
// entity become deeper: they are followed backwards as long as depths grow. A depth is 100 at most, so each edge is
// followed 100 times at most.

/** "from" has "to" in its value: one of the references of the former and of the referrers of the latter. */
struct kelto::EntityNesting::Reference
{
    Entity *from, *to;
    Reference *nextOfReferrers, *nextOfReferences;
};

/** An entity; its name stands behind it in memory. */
struct kelto::EntityNesting::Entity
{
    std::string_view name;
    Reference *referrers = nullptr, *references = nullptr;
    Entity *next = nullptr;
    Entity *ring = this; // the member that stands for the ring; most rings have this one alone
    Entity *nextMember = nullptr;

    // These belong to the ring, and are set in the member that stands for it.
    unsigned depth = 0; // 0: refers to no other, or was not declared yet
    unsigned members = 1;
    Entity *lastMember = this;
    const Entity *leadsTo = nullptr; // the entity for whose declaration findReferrers() came here last
    Entity *nextWaiting = nullptr;
    bool isWaiting = false;
};

namespace
{

constexpr unsigned deepestAnywhere = 100;

// The stack that expat needs for each level, with a good margin, and the stack for all other work.
constexpr size_t stackForLevel = 512;
constexpr size_t stackForRest = 4096;

// A declaration makes the entities deeper that referred to the new one before; following references finds them. Where
// entities are declared before others refer to them, no reference is followed.
constexpr size_t oftenFollowed = 8;

unsigned deepestOnThisStack()
{
    const size_t left = kelto::stackLeft();
    const size_t levels = (left - std::min(left, stackForRest)) / stackForLevel;
    return static_cast<unsigned>(std::clamp<size_t>(levels, 1, deepestAnywhere));
}

constexpr std::string_view predefined[] = {"lt", "gt", "amp", "apos", "quot"};

/** A part of an entity's text in which the parser expands no reference. */
struct Passage
{
    std::string_view begin, end;
};

constexpr Passage passages[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};

/** Takes the '<' at the front of a value, or the whole passage that it begins. */
void takeMarkup(std::string_view &value)
{
    for (const Passage &passage : passages)
        if (value.substr(0, passage.begin.size()) == passage.begin)
        {
            value.remove_prefix(std::min(value.find(passage.end, passage.begin.size()), value.size()));
            return;
        }
    value.remove_prefix(1);
}

/** Takes the next reference to an entity from the front of a value; empty when there is none. */
std::string_view takeReference(std::string_view &value)
{
    size_t start;
    while ((start = value.find_first_of("&<")) != std::string_view::npos)
    {
        value.remove_prefix(start);
        if (value[0] == '<')
        {
            takeMarkup(value);
            continue;
        }
        value.remove_prefix(1);
        const size_t end = value.find_first_of("&;");
        if (end == std::string_view::npos)
            break;
        const std::string_view name = value.substr(0, end);
        if (value[end] == ';' && !name.empty() && name[0] != '#' &&
            std::find(std::begin(predefined), std::end(predefined), name) == std::end(predefined))
            return name;
        value.remove_prefix(end);
    }
    return {};
}

} // namespace

kelto::EntityNesting::~EntityNesting()
{
    tdestroy(m_tree, [](void *) {});
    while (m_entities != nullptr)
    {
        Entity *const entity = m_entities;
        m_entities = entity->next;
        while (entity->referrers != nullptr)
            delete std::exchange(entity->referrers, entity->referrers->nextOfReferrers);
        std::free(entity);
    }
}

bool kelto::EntityNesting::add(std::string_view name, std::string_view value) noexcept
{
    std::string_view reference = takeReference(value);
    if (reference.empty())
        return true;
    if (m_deepest == 0)
        m_deepest = deepestOnThisStack();
    Entity *const entity = find(name);
    if (entity == nullptr)
        return false;
    entity->depth = 1;
    for (; !reference.empty(); reference = takeReference(value))
        if (!refer(entity, reference))
            return false;
    if (entity->referrers != nullptr)
        closeRing(entity);
    return deepen(entity);
}

/** The entity of a name, which is noted if it was not before; null when there is no memory for it. */
kelto::EntityNesting::Entity *kelto::EntityNesting::find(std::string_view name) noexcept
{
    const auto compare = [](const void *a, const void *b) {
        return static_cast<const Entity *>(a)->name.compare(static_cast<const Entity *>(b)->name);
    };
    const Entity sought = {name};
    if (void *const found = tfind(&sought, &m_tree, compare))
        return *static_cast<Entity **>(found);

    void *const block = std::malloc(sizeof(Entity) + name.size());
    if (block == nullptr)
        return nullptr;
    char *const copy = static_cast<char *>(block) + sizeof(Entity);
    std::memcpy(copy, name.data(), name.size());
    auto *const entity = new (block) Entity{{copy, name.size()}};
    if (tsearch(entity, &m_tree, compare) == nullptr)
    {
        std::free(block);
        return nullptr;
    }
    entity->next = m_entities;
    m_entities = entity;
    return entity;
}

bool kelto::EntityNesting::refer(Entity *from, std::string_view to) noexcept
{
    Entity *const entity = find(to);
    if (entity == nullptr)
        return false;
    const bool isKnown = entity->referrers != nullptr && entity->referrers->from == from;
    if (isKnown || entity == from) // a ring of one is as deep as any entity
        return true;
    auto *const reference = new (std::nothrow) Reference{from, entity, entity->referrers, from->references};
    if (reference == nullptr)
        return false;
    entity->referrers = reference;
    from->references = reference;
    m_mayFollow += oftenFollowed;
    from->depth = std::max(from->depth, entity->ring->depth + 1);
    return true;
}

/**
 * Notes which rings refer to a newly declared entity, in any number of steps, and are less deep than it. All rings to
 * which it refers are less deep, so the ring that it closes consists of noted ones. deepen() has to follow all these
 * references anyway.
 */
void kelto::EntityNesting::findReferrers(Entity *entity) noexcept
{
    entity->nextWaiting = nullptr;
    for (Entity *waiting = entity; waiting != nullptr;)
    {
        const Entity *member = waiting;
        waiting = waiting->nextWaiting;
        for (; member != nullptr; member = member->nextMember)
            for (const Reference *reference = member->referrers; reference != nullptr;
                 reference = reference->nextOfReferrers)
            {
                Entity *const from = reference->from->ring;
                if (from->leadsTo == entity || from->depth >= entity->depth)
                    continue;
                from->leadsTo = entity;
                from->nextWaiting = waiting;
                waiting = from;
            }
    }
}

/** Makes one ring of a newly declared entity and of the rings on a circle with it. */
void kelto::EntityNesting::closeRing(Entity *entity) noexcept
{
    findReferrers(entity);
    // The ring grows behind the member whose references are followed.
    for (const Entity *member = entity; member != nullptr; member = member->nextMember)
        for (const Reference *reference = member->references; reference != nullptr;
             reference = reference->nextOfReferences)
        {
            ++m_followed;
            Entity *const to = reference->to->ring;
            if (to != entity && to->leadsTo == entity)
                join(entity, to);
        }
    if (entity->members == 1)
        return;
    unsigned deepestBelow = 0;
    for (const Entity *member = entity; member != nullptr; member = member->nextMember)
        for (const Reference *reference = member->references; reference != nullptr;
             reference = reference->nextOfReferences)
            if (reference->to->ring != entity)
                deepestBelow = std::max(deepestBelow, reference->to->ring->depth);
    entity->depth = entity->members + deepestBelow;
}

/** Adds the members of one ring to those of another. */
void kelto::EntityNesting::join(Entity *ring, Entity *joined) noexcept
{
    ring->lastMember->nextMember = joined;
    ring->lastMember = joined->lastMember;
    ring->members += joined->members;
    for (Entity *member = joined; member != nullptr; member = member->nextMember)
        member->ring = ring;
}

/** Makes deeper all rings that refer to this one, in any number of steps; false when one becomes too deep. */
bool kelto::EntityNesting::deepen(Entity *ring) noexcept
{
    ring->nextWaiting = nullptr;
    for (Entity *waiting = ring; waiting != nullptr;)
    {
        const Entity *const deepened = waiting;
        if (deepened->depth > m_deepest)
            return false;
        waiting->isWaiting = false;
        waiting = waiting->nextWaiting;
        for (const Entity *member = deepened; member != nullptr; member = member->nextMember)
            for (const Reference *reference = member->referrers; reference != nullptr;
                 reference = reference->nextOfReferrers)
            {
                Entity *const from = reference->from->ring;
                const unsigned depth = deepened->depth + from->members;
                if (++m_followed > m_mayFollow)
                    return false;
                if (from == deepened || from->depth >= depth)
                    continue;
                from->depth = depth;
                if (from->isWaiting)
                    continue;
                from->isWaiting = true;
                from->nextWaiting = waiting;
                waiting = from;
            }
    }
    return true;
}
