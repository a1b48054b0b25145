#include "message/entity_nesting.h"

#include "platform/stack.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <search.h>
#include <utility>

/** "from" has "to" in its value, and becomes deeper where that does; linked from the latter. */
struct kelto::EntityNesting::Reference
{
    Entity *from;
    Reference *next;
};

/** Its name stands behind it. */
struct kelto::EntityNesting::Entity
{
    std::string_view name;
    unsigned depth = 0; // 0: refers to no other, or was not declared yet
    bool isWaiting = false;
    Reference *referrers = nullptr;
    Entity *next = nullptr;
    Entity *nextWaiting = nullptr;
};

namespace
{

constexpr unsigned deepestAnywhere = 100;

// What expat needs for each level, with a good margin, and for the rest of its work and ours.
constexpr size_t stackForLevel = 512;
constexpr size_t stackForRest = 4096;

// A declaration deepens all that referred to it before. From the bottom up, no reference needs to be followed.
constexpr size_t oftenFollowed = 8;

unsigned deepestOnThisStack()
{
    const size_t left = kelto::stackLeft();
    const size_t levels = (left - std::min(left, stackForRest)) / stackForLevel;
    return static_cast<unsigned>(std::clamp<size_t>(levels, 1, deepestAnywhere));
}

constexpr std::string_view predefined[] = {"lt", "gt", "amp", "apos", "quot"};

/** What the parser passes over in the text of an entity: nothing in there refers to another. */
struct Passage
{
    std::string_view begin, end;
};

constexpr Passage passages[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};

/** Takes the '<' at the front of a value, and the passage that it begins. */
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
            delete std::exchange(entity->referrers, entity->referrers->next);
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
    return deepen(entity);
}

/** The entity of this name, noted where it was not; null when there is no memory for it. */
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
    if (entity->referrers != nullptr && entity->referrers->from == from)
        return true; // not for the first time
    auto *const reference = new (std::nothrow) Reference{from, entity->referrers};
    if (reference == nullptr)
        return false;
    entity->referrers = reference;
    m_mayFollow += oftenFollowed;
    from->depth = std::max(from->depth, entity->depth + 1);
    return true;
}

/** Carries the depth of an entity to those that refer to it; false when one becomes too deep. */
bool kelto::EntityNesting::deepen(Entity *entity) noexcept
{
    for (Entity *waiting = entity; waiting != nullptr;)
    {
        const Entity *const deepened = waiting;
        if (deepened->depth > m_deepest)
            return false;
        waiting->isWaiting = false;
        waiting = waiting->nextWaiting;
        for (const Reference *reference = deepened->referrers; reference != nullptr; reference = reference->next)
        {
            Entity *const from = reference->from;
            if (++m_followed > m_mayFollow)
                return false;
            if (from->depth > deepened->depth)
                continue;
            from->depth = deepened->depth + 1;
            if (from->isWaiting)
                continue;
            from->isWaiting = true;
            from->nextWaiting = waiting;
            waiting = from;
        }
    }
    return true;
}
