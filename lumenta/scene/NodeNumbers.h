#pragma once

// Private to the library: numbers by node, for what asks about every node of a
// tree.

#include <cstddef>
#include <cstdint>
#include <vector>

class INode;

/// A hash table with open addressing: a node lies in the slot that its address
/// names, or in the next one that was free. One flat array, at most half full:
/// most questions are answered by one line of memory, and no entry is allocated
/// for itself. Nodes are never null.
class NodeNumbers {
public:
    /// \param expected nodes; more make it grow
    explicit NodeNumbers(std::size_t expected)
    {
        std::size_t size = 16;
        while (size < 2 * expected)
            size *= 2;
        SetSize(size);
    }

    /// The number of `node`, which is the given one where it had none.
    std::uint32_t Insert(const INode* node, std::uint32_t number)
    {
        const std::size_t slot = SlotOf(node);
        if (m_slots[slot].node) return m_slots[slot].number;
        m_slots[slot] = {node, number};
        if (2 * ++m_count > m_slots.size()) Grow();
        return number;
    }

    /// Null for a node without one. Good until the next is put in.
    const std::uint32_t* Find(const INode* node) const
    {
        const Slot& slot = m_slots[SlotOf(node)];
        return slot.node ? &slot.number : nullptr;
    }

private:
    struct Slot {
        const INode* node = nullptr;
        std::uint32_t number = 0;
    };

    /// That of the node, or the free one where it belongs.
    std::size_t SlotOf(const INode* node) const
    {
        // The high bits of a product with 2^64 over the golden ratio: neighbours in
        // memory go far apart (Knuth, volume 3, 6.4).
        const std::uint64_t product = reinterpret_cast<std::uintptr_t>(node) * UINT64_C(0x9e3779b97f4a7c15);
        auto slot = static_cast<std::size_t>(product >> m_shift);
        while (m_slots[slot].node && m_slots[slot].node != node)
            slot = (slot + 1) & (m_slots.size() - 1);
        return slot;
    }

    /// \param size a power of two above 1
    void SetSize(std::size_t size)
    {
        m_slots.assign(size, Slot());
        for (m_shift = 64; size > 1; size /= 2)
            --m_shift;
    }

    void Grow()
    {
        std::vector<Slot> old;
        old.swap(m_slots);
        SetSize(2 * old.size());
        for (const Slot& slot : old)
            if (slot.node) m_slots[SlotOf(slot.node)] = slot;
    }

    std::vector<Slot> m_slots;
    std::size_t m_count = 0;
    int m_shift = 0; ///< Leaves as many bits of a product as number the slots.
};
