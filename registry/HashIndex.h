// A small hash table for the registry's lookup indexes: open addressing with
// linear probing in a power-of-two array kept at most half full, so that a
// lookup is one hash and, nearly always, one or two adjacent slots - no tree
// walk and no pointer chase. Removal shifts the following entries back
// instead of leaving tombstones, so lookups stay short however often units
// come and go.
//
// Find() only reads: any number of threads may look up at once as long as
// nobody inserts or removes at the same time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// Hash functions of the index keys; the index takes the top bits of their
// result, so they end with a multiplication that spreads every input bit
// into the top bits.
struct CKVindexHash {
    static uint64_t Mix(uint64_t value) { return value * 0x9E3779B97F4A7C15ull; }
    uint64_t operator()(long key) const { return Mix(static_cast<uint64_t>(key)); }
    uint64_t operator()(const void* pointer) const {
        return Mix(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(pointer)) >> 4);
    }
    uint64_t operator()(std::string_view text) const {
        return Mix(std::hash<std::string_view>()(text));
    }
};

template <class Key, class Value> class CKVhashIndex {
  public:
    // The value stored for key, or null when the key is absent. The key may be
    // of any type that hashes like Key and compares equal to it (a
    // std::string_view for a std::string key).
    template <class K> const Value* Find(const K& key) const {
        if (m_count == 0)
            return nullptr;
        for (size_t i = Home(key);; i = (i + 1) & m_mask) {
            const Slot& slot = m_slots[i];
            if (!slot.Used())
                return nullptr;
            if (slot.key == key)
                return &slot.value;
        }
    }

    // Stores value for key, replacing the value of a key already present.
    // For pointer values, value must not be null. After Reserve(Size() + 1)
    // it allocates nothing for a key that is moved in.
    void Set(const Key& key, const Value& value) { Set(Key(key), value); }
    void Set(Key&& key, const Value& value) {
        // A key already present only changes its value: nothing grows, so
        // that updates after Reserve never allocate.
        if (m_count > 0) {
            for (size_t i = Home(key); m_slots[i].Used(); i = (i + 1) & m_mask) {
                if (m_slots[i].key == key) {
                    m_slots[i].value = value;
                    return;
                }
            }
        }
        if (2 * (m_count + 1) > m_slots.size())
            Grow();
        size_t i = Home(key);
        while (m_slots[i].Used())
            i = (i + 1) & m_mask;
        m_slots[i].Take();
        m_slots[i].key = std::move(key);
        m_slots[i].value = value;
        ++m_count;
    }

    // Makes room for count entries, so that adding entries up to that many
    // allocates nothing.
    void Reserve(size_t count) {
        while (2 * count > m_slots.size())
            Grow();
    }

    // Removes key if present.
    void Erase(const Key& key) {
        if (m_count == 0)
            return;
        size_t hole = Home(key);
        for (;; hole = (hole + 1) & m_mask) {
            if (!m_slots[hole].Used())
                return;
            if (m_slots[hole].key == key)
                break;
        }
        // Move back every later entry of the run that would otherwise no
        // longer be reachable from its home slot across the hole.
        for (size_t next = (hole + 1) & m_mask; m_slots[next].Used(); next = (next + 1) & m_mask) {
            const size_t home = Home(m_slots[next].key);
            const bool reachable =
                hole <= next ? (home > hole && home <= next) : (home > hole || home <= next);
            if (!reachable) {
                m_slots[hole] = std::move(m_slots[next]);
                hole = next;
            }
        }
        m_slots[hole] = Slot();
        --m_count;
    }

    size_t Size() const { return m_count; }

  private:
    // A slot is in use when its flag says so; for pointer values, which the
    // registry never stores null, a non-null value is the flag, which keeps
    // the key index at 16 bytes a slot.
    static constexpr bool kNullIsFree = std::is_pointer<Value>::value;
    struct FlaggedSlot {
        Key key{};
        Value value{};
        bool used = false;
        bool Used() const { return used; }
        void Take() { used = true; }
    };
    struct PointerSlot {
        Key key{};
        Value value{};
        bool Used() const { return value != nullptr; }
        void Take() {}
    };
    using Slot = typename std::conditional<kNullIsFree, PointerSlot, FlaggedSlot>::type;

    template <class K> size_t Home(const K& key) const {
        return static_cast<size_t>(CKVindexHash()(key) >> m_shift);
    }

    // Doubles the table. The new slots are allocated before anything moves,
    // and moving an entry cannot fail, so a failed allocation leaves the
    // index as it was.
    void Grow() {
        const size_t capacity = m_slots.empty() ? 16 : 2 * m_slots.size();
        std::vector<Slot> slots(capacity);
        unsigned shift = 64;
        for (size_t c = capacity; c > 1; c >>= 1)
            --shift;
        const size_t mask = capacity - 1;
        for (Slot& slot : m_slots) {
            if (!slot.Used())
                continue;
            size_t i = static_cast<size_t>(CKVindexHash()(slot.key) >> shift);
            while (slots[i].Used())
                i = (i + 1) & mask;
            slots[i] = std::move(slot);
        }
        m_slots.swap(slots);
        m_mask = mask;
        m_shift = shift;
    }

    std::vector<Slot> m_slots;
    size_t m_count = 0;
    size_t m_mask = 0;
    unsigned m_shift = 64;
};
