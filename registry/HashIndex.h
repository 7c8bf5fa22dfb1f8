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
#include <cstdlib>
#include <new>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <sys/mman.h>

// Hash functions of the index keys; the index takes the top bits of their
// result, so they end with a multiplication that spreads every input bit
// into the top bits.
struct CKVhashedView;
struct CKVindexHash {
    static uint64_t Mix(uint64_t value) { return value * 0x9E3779B97F4A7C15ull; }
    uint64_t operator()(long key) const { return Mix(static_cast<uint64_t>(key)); }
    uint64_t operator()(const void* pointer) const {
        return Mix(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(pointer)) >> 4);
    }
    uint64_t operator()(std::string_view text) const {
        return Mix(std::hash<std::string_view>()(text));
    }
    uint64_t operator()(const CKVhashedView& key) const;
};

// A view of a text kept elsewhere, with its hash, as the key of an index:
// a probe compares the hashes first and reads the text only when they
// agree, so that a lookup in a large index does not visit the objects that
// hold the texts of other keys.
struct CKVhashedView {
    CKVhashedView() = default;
    explicit CKVhashedView(std::string_view text) : text(text), hash(CKVindexHash()(text)) {}
    bool operator==(const CKVhashedView& other) const {
        return hash == other.hash && text == other.text;
    }
    std::string_view text;
    uint64_t hash = 0;
};

inline uint64_t CKVindexHash::operator()(const CKVhashedView& key) const {
    return key.hash;
}

// The allocator of the slot arrays. An array of 2 MiB or more is placed on
// 2 MiB boundaries and offered to the kernel for huge pages: the slots of a
// large index are visited at random, and with 4 KiB pages nearly every visit
// to an index of 100,000 entries would also miss the processor's address
// translation cache, which makes lookups and registration slower per entry
// the larger the registry. Smaller arrays come from operator new.
template <class T> struct CKVslotAllocator {
    using value_type = T;
    static constexpr std::size_t kHugePage = std::size_t(2) << 20;

    CKVslotAllocator() = default;
    template <class U> CKVslotAllocator(const CKVslotAllocator<U>&) {}

    T* allocate(std::size_t n) {
        if (n > static_cast<std::size_t>(-1) / sizeof(T))
            throw std::bad_alloc();
        const std::size_t bytes = n * sizeof(T);
        if (bytes < kHugePage)
            return static_cast<T*>(::operator new(bytes));
        const std::size_t rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
        void* memory = std::aligned_alloc(kHugePage, rounded);
        if (memory == nullptr)
            throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
        madvise(memory, rounded, MADV_HUGEPAGE); // a hint: failure changes nothing
#endif
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, std::size_t n) {
        if (n * sizeof(T) < kHugePage)
            ::operator delete(memory);
        else
            std::free(memory);
    }
    template <class U> bool operator==(const CKVslotAllocator<U>&) const {
        return true;
    }
    template <class U> bool operator!=(const CKVslotAllocator<U>&) const {
        return false;
    }
};

// A value type that tells by itself whether a slot holds one needs no flag
// beside it: pointers (a registry never stores a null one) and classes with
// a member `bool InUse() const` that is false for a value-initialised value.
template <class V, class = void> struct CKVselfFlagged : std::is_pointer<V> {};
template <class V>
struct CKVselfFlagged<V, std::void_t<decltype(std::declval<const V&>().InUse())>> : std::true_type {
};

// Hash is CKVindexHash, or a function object of the same shape for keys of
// its own (it must spread every input bit into the top bits of its result).
template <class Key, class Value, class Hash = CKVindexHash> class CKVhashIndex {
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

    // The same for changing the value in place (not its flag: a self-flagged
    // value must stay in use).
    template <class K> Value* Find(const K& key) {
        return const_cast<Value*>(static_cast<const CKVhashIndex&>(*this).Find(key));
    }

    // Stores value for key, replacing the value of a key already present.
    // For self-flagged values, value must be in use (a pointer not null). After Reserve(Size() + 1)
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

    // Asks the processor to fetch the slot where key would be found, so that
    // a Find or Set soon after does not wait for memory: an index of many
    // entries is mostly outside the caches, and its slots are scattered.
    template <class K> void Prefetch(const K& key) const {
        if (m_slots.empty())
            return;
        const Slot* slot = &m_slots[Home(key)];
        __builtin_prefetch(slot);
        __builtin_prefetch(reinterpret_cast<const char*>(slot + 1) - 1);
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
    // A slot is in use when its flag says so; a self-flagged value is its
    // own flag, which keeps an index of pointers at 16 bytes a slot.
    static constexpr bool kNullIsFree = CKVselfFlagged<Value>::value;
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
        bool Used() const { return InUse(value); }
        void Take() {}
    };
    template <class V> static bool InUse(V* value) { return value != nullptr; }
    template <class V> static bool InUse(const V& value) { return value.InUse(); }
    using Slot = typename std::conditional<kNullIsFree, PointerSlot, FlaggedSlot>::type;

    template <class K> size_t Home(const K& key) const {
        return static_cast<size_t>(Hash()(key) >> m_shift);
    }

    // Doubles the table. The new slots are allocated before anything moves,
    // and moving an entry cannot fail, so a failed allocation leaves the
    // index as it was.
    void Grow() {
        const size_t capacity = m_slots.empty() ? 16 : 2 * m_slots.size();
        std::vector<Slot, CKVslotAllocator<Slot>> slots(capacity);
        unsigned shift = 64;
        for (size_t c = capacity; c > 1; c >>= 1)
            --shift;
        const size_t mask = capacity - 1;
        for (Slot& slot : m_slots) {
            if (!slot.Used())
                continue;
            size_t i = static_cast<size_t>(Hash()(slot.key) >> shift);
            while (slots[i].Used())
                i = (i + 1) & mask;
            slots[i] = std::move(slot);
        }
        m_slots.swap(slots);
        m_mask = mask;
        m_shift = shift;
    }

    std::vector<Slot, CKVslotAllocator<Slot>> m_slots;
    size_t m_count = 0;
    size_t m_mask = 0;
    unsigned m_shift = 64;
};
