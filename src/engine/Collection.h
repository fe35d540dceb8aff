#pragma once
// A 1-based collection of owned engine objects with Count, Item(i) and range-for enumeration.

#include "engine/EngineError.h"

#include <memory>
#include <vector>

namespace Engine {

template <typename T> class Collection
{
    using Slots = std::vector<std::unique_ptr<T>>;

public:
    class iterator
    {
    public:
        explicit iterator(typename Slots::const_iterator at) : m_at(at) {}
        T &operator*() const { return **m_at; }
        T *operator->() const { return m_at->get(); }
        iterator &operator++()
        {
            ++m_at;
            return *this;
        }
        bool operator==(const iterator &other) const = default;

    private:
        typename Slots::const_iterator m_at;
    };

    int Count() const { return int(m_items.size()); }

    T &Item(int index) const
    {
        if (index < 1 || index > Count())
            throw EngineError(EngineError::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
        return *m_items[size_t(index - 1)];
    }

    iterator begin() const { return iterator(m_items.cbegin()); }
    iterator end() const { return iterator(m_items.cend()); }

    T &append(std::unique_ptr<T> item)
    {
        m_items.push_back(std::move(item));
        return *m_items.back();
    }

private:
    Slots m_items;
};

} // namespace Engine
