// CKVtable: the storage every registry is made of - objects in registration
// order, found by numeric key and by ident in constant time, owned by the
// table. No two objects share a key or an ident; the table never holds a
// null pointer.
//
// A table hands its objects out; it is what the registry classes build on,
// and only they use it. Lookups never write anything, so any number of
// threads may look up at once while nobody adds or removes.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "registry/HashIndex.h"

// Makes room in a vector for one more element without changing its size:
// the capacity doubles when it is used up, so that n additions cost O(n) in
// all (reserving exactly one more slot each time would copy the vector each
// time). Throws std::bad_alloc, changing nothing, when memory runs out.
template <class V> void xunReserveOneMore_(V& vector) {
    if (vector.size() == vector.capacity())
        vector.reserve(vector.empty() ? 16 : 2 * vector.size());
}

// How a table reads the key and the ident of its objects:
//   long XunKeyOf(const T&);  const std::string& XunIdentOf(const T&);
// declared beside each object type.

// What a table keeps of an object under its key: the object, its index in
// registration order, and whatever the registry derives from it (Extra, for
// example what a conversion reads of a unit). One record per object, found
// with one hash: adding an object touches two index slots (key and ident)
// whatever the registry keeps beside it, which keeps registration cheap at
// any size.
struct CKVnoExtra {};
template <class T, class Extra> struct CKVtableRecord : Extra {
    T* object = nullptr;
    std::size_t index = 0;
    bool InUse() const { return object != nullptr; }
};

template <class T, class Extra = CKVnoExtra> class CKVtable {
  public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    CKVtable() = default;
    CKVtable(const CKVtable&) = delete;
    CKVtable& operator=(const CKVtable&) = delete;
    ~CKVtable() {
        for (T* object : m_list)
            delete object;
    }

    // Registers object, appended or (atFront) inserted before all others, and
    // takes it over (object becomes null); extra is kept with it. Returns
    // false and changes nothing (object stays with the caller) when its key
    // or its ident is taken.
    bool Add(std::unique_ptr<T>& object, bool atFront = false, const Extra& extra = Extra()) {
        const long key = XunKeyOf(*object);
        const std::string& ident = XunIdentOf(*object);
        if (m_byKey.Find(key) != nullptr || m_byIdent.Find(std::string_view(ident)) != nullptr)
            return false;
        T* raw = object.get();
        // Make room first, so that nothing after the first change can fail:
        // each index is grown and the ident copied before the object goes in.
        std::string identCopy(ident);
        xunReserveOneMore_(m_list);
        m_byKey.Reserve(m_byKey.Size() + 1);
        m_byIdent.Reserve(m_byIdent.Size() + 1);
        Record record;
        static_cast<Extra&>(record) = extra;
        record.object = raw;
        if (atFront) {
            m_list.insert(m_list.begin(), raw);
            record.index = 0;
            m_byKey.Set(key, record);
            RenumberFrom(1);
        } else {
            m_list.push_back(raw);
            record.index = m_list.size() - 1;
            m_byKey.Set(key, record);
        }
        m_byIdent.Set(std::move(identCopy), raw);
        object.release();
        return true;
    }

    // Takes a registered object out of the table and hands it back; null
    // when it is not registered (object must be alive, registered or not).
    std::unique_ptr<T> Remove(const T* object) {
        const std::size_t index = IndexOf(object);
        if (index == npos)
            return nullptr;
        T* raw = m_list[index];
        m_list.erase(m_list.begin() + static_cast<std::ptrdiff_t>(index));
        m_byKey.Erase(XunKeyOf(*raw));
        m_byIdent.Erase(XunIdentOf(*raw));
        RenumberFrom(index);
        return std::unique_ptr<T>(raw);
    }

    T* FindByKey(long key) const {
        const Record* found = m_byKey.Find(key);
        return found != nullptr ? found->object : nullptr;
    }
    // Starts fetching the index slots of key and ident from memory, for an
    // Add or a lookup that follows after other work.
    void Prefetch(long key, std::string_view ident) const {
        m_byKey.Prefetch(key);
        m_byIdent.Prefetch(ident);
    }
    void PrefetchKey(long key) const { m_byKey.Prefetch(key); }
    // What the registry keeps with the object of key; null for an unknown key.
    const Extra* FindExtra(long key) const { return m_byKey.Find(key); }
    T* FindByIdent(std::string_view ident) const {
        T* const* found = m_byIdent.Find(ident);
        return found != nullptr ? *found : nullptr;
    }

    std::size_t Count() const { return m_list.size(); }
    // The object at index (0-based) in registration order.
    T* At(std::size_t index) const { return m_list[index]; }
    // The index of a registered object; npos for any other object that is
    // alive (its key is read).
    std::size_t IndexOf(const T* object) const {
        const Record* found = m_byKey.Find(XunKeyOf(*object));
        return found != nullptr && found->object == object ? found->index : npos;
    }

    // The objects in registration order, for range-for.
    typename std::vector<T*>::const_iterator begin() const { return m_list.begin(); }
    typename std::vector<T*>::const_iterator end() const { return m_list.end(); }

    // Throws std::logic_error naming the first broken invariant: every
    // object is found under its key and its ident and at its index, and the
    // indexes hold nothing else.
    void CheckInvariants(const char* what) const {
        if (m_byKey.Size() != m_list.size() || m_byIdent.Size() != m_list.size())
            throw std::logic_error(std::string(what) + ": an index and the list differ in size");
        for (std::size_t i = 0; i < m_list.size(); ++i) {
            const T* object = m_list[i];
            if (object == nullptr)
                throw std::logic_error(std::string(what) + ": a null element");
            if (FindByKey(XunKeyOf(*object)) != object)
                throw std::logic_error(std::string(what) + ": an object is not found by key");
            if (FindByIdent(XunIdentOf(*object)) != object)
                throw std::logic_error(std::string(what) + ": an object is not found by ident");
            if (IndexOf(object) != i)
                throw std::logic_error(std::string(what) + ": an object is not at its index");
        }
    }

  private:
    using Record = CKVtableRecord<T, Extra>;

    // Stores the index of every object from first on (after an insertion at
    // the front or a removal); allocates nothing.
    void RenumberFrom(std::size_t first) {
        for (std::size_t i = first; i < m_list.size(); ++i)
            m_byKey.Find(XunKeyOf(*m_list[i]))->index = i;
    }

    std::vector<T*> m_list; // owned
    CKVhashIndex<long, Record> m_byKey;
    CKVhashIndex<std::string, T*> m_byIdent;
};
