// The registry's lookup indexes: the hash table itself against std::map, and
// the unit lookups and the iteration functions against a literal
// implementation of the containers' walks - lookups in the ordered maps and a
// find routine that walks UnitList_ with its one-entry cache - over random
// registries with units added at either end, units removed, units of key 0 and
// null elements put into the list by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "registry/HashIndex.h"
#include "registry/UnitRegistry.h"
#include "xun.h"

namespace {

// --- the hash table -------------------------------------------------------

TEST(HashIndex, AgreesWithAnOrderedMapUnderRandomChanges) {
    std::mt19937_64 random(1);
    for (int round = 0; round < 50; ++round) {
        CKVhashIndex<long, int> index;
        std::map<long, int> model;
        // A small key range forces long probe runs, wrap-arounds and the
        // backward shift of removal.
        const long range = 8 + static_cast<long>(random() % 200);
        for (int step = 0; step < 3000; ++step) {
            const long key = static_cast<long>(random() % range) - range / 3;
            switch (random() % 3) {
            case 0:
            case 1:
                index.Set(key, step);
                model[key] = step;
                break;
            default:
                index.Erase(key);
                model.erase(key);
                break;
            }
            ASSERT_EQ(index.Size(), model.size());
            if (step % 97 == 0) {
                for (long k = -range; k <= range; ++k) {
                    const int* found = index.Find(k);
                    const auto it = model.find(k);
                    ASSERT_EQ(found != nullptr, it != model.end()) << k;
                    if (found != nullptr) {
                        ASSERT_EQ(*found, it->second) << k;
                    }
                }
            }
        }
    }
}

TEST(HashIndex, StringKeysAreFoundByView) {
    CKVhashIndex<std::string, int> index;
    std::map<std::string, int> model;
    std::mt19937_64 random(2);
    for (int step = 0; step < 5000; ++step) {
        const std::string key = "unit" + std::to_string(random() % 700);
        if (random() % 4 == 0) {
            index.Erase(key);
            model.erase(key);
        } else {
            index.Set(key, step);
            model[key] = step;
        }
    }
    ASSERT_EQ(index.Size(), model.size());
    for (int i = 0; i < 700; ++i) {
        const std::string key = "unit" + std::to_string(i);
        const int* found = index.Find(std::string_view(key));
        const auto it = model.find(key);
        ASSERT_EQ(found != nullptr, it != model.end()) << key;
        if (found != nullptr) {
            EXPECT_EQ(*found, it->second);
        }
    }
    EXPECT_EQ(index.Find(std::string_view("")), nullptr);
    index.Set("", 7);
    ASSERT_NE(index.Find(std::string_view("")), nullptr);
    EXPECT_EQ(*index.Find(std::string_view("")), 7);
}

TEST(HashIndex, EmptyIndexFindsNothing) {
    CKVhashIndex<long, int> index;
    EXPECT_EQ(index.Find(0L), nullptr);
    index.Erase(5);
    EXPECT_EQ(index.Size(), 0u);
    index.Set(5, 1);
    index.Erase(5);
    EXPECT_EQ(index.Find(5L), nullptr);
    EXPECT_EQ(index.Size(), 0u);
}

// --- the registry against the literal walks -------------------------------

// The design's find routine over UnitList_: a walk from the cached position
// when the same unit is asked for again, from the front otherwise.
struct ReferenceFind {
    const CKVunit* prevFoundUn = nullptr;
    CKVunitList::iterator prevFoundPos;
    bool set = false;

    CKVunitList::iterator Find(const CKVunit* unit) {
        if (!set) {
            prevFoundPos = UnitList_.begin();
            set = true;
        }
        CKVunitList::iterator it = unit == prevFoundUn ? prevFoundPos : UnitList_.begin();
        for (; it != UnitList_.end(); ++it) {
            if (*it == unit) {
                prevFoundUn = unit;
                prevFoundPos = it;
                return it;
            }
        }
        return UnitList_.end();
    }
    void Clear() {
        prevFoundUn = nullptr;
        set = false;
    }
};

CKVunit* MapLookup(long key) {
    const auto it = UnitMap_.find(key);
    return it == UnitMap_.end() ? nullptr : it->second;
}

int ReferenceNextUnit(ReferenceFind& find, int prevTag, int* nextTag, const char** nextKey) {
    CKVunitList::iterator it = UnitList_.begin();
    if (prevTag != 0) {
        const CKVunitList::iterator position = find.Find(MapLookup(prevTag));
        if (position == UnitList_.end())
            return 0;
        it = std::next(position);
    }
    if (it == UnitList_.end() || *it == nullptr || (*it)->m_lKey == 0)
        return 0;
    *nextTag = static_cast<int>((*it)->m_lKey);
    *nextKey = (*it)->m_strDesc.c_str();
    return 1;
}

int ReferenceNextEqvUnit(ReferenceFind& find, int tag, int prevTag, int* nextTag,
                         const char** nextKey) {
    const CKVunit* reference = MapLookup(tag);
    CKVunitList::iterator it = UnitList_.begin();
    if (prevTag != 0) {
        const CKVunitList::iterator position = find.Find(MapLookup(prevTag));
        if (position == UnitList_.end() || std::next(position) == UnitList_.end())
            return 0;
        it = std::next(position);
    }
    for (; it != UnitList_.end(); ++it) {
        const CKVunit* unit = *it;
        if (unit != nullptr && unit->IsEqv(*reference) && unit->m_lKey != 0) {
            *nextTag = static_cast<int>(unit->m_lKey);
            *nextKey = unit->m_strDesc.c_str();
            return 1;
        }
    }
    return 0;
}

const CKVdimension& RandomDimension(std::mt19937_64& random) {
    switch (random() % 3) {
    case 0:
        return CKVdimension::GetLength();
    case 1:
        return CKVdimension::GetMass();
    default:
        return CKVdimension::GetTime();
    }
}

// One random registry, changed and queried in random order. The whole test
// runs in its own process, so it may fill the global registry.
void RunRandomRegistry(uint64_t start, int steps) {
    std::mt19937_64 random(start);
    ReferenceFind reference;
    std::vector<std::unique_ptr<CKVunit>> removed; // freed at the end
    std::vector<CKVunit*> everUsed;                // registered now or before
    int serial = 0;
    for (int step = 0; step < steps; ++step) {
        const unsigned action = static_cast<unsigned>(random() % 100);
        if (action < 30) {
            // A new unit at either end; about one in six is refused because
            // its key or ident is taken.
            ++serial;
            const long key = static_cast<long>(random() % 12 == 0 ? 0 : random() % 400) - 20;
            const std::string ident = "u" + std::to_string(random() % 500);
            auto unit = std::make_unique<CKVunit>(ident + " desc", ident, key, 1.0 + serial, 0.0,
                                                  RandomDimension(random));
            unit->m_strIdent = ident;
            const bool taken = MapLookup(key) != nullptr || UnitStringMap_.count(ident) != 0;
            const int added = AddUnit_(*unit, static_cast<int>(random() % 3 == 0));
            ASSERT_EQ(added, taken ? 0 : 1);
            if (added) {
                everUsed.push_back(unit.get());
                unit.release();
            }
        } else if (action < 34 && !UnitList_.empty()) {
            // Out again, as the setup loader takes out its base units.
            auto it = std::next(UnitList_.begin(), static_cast<long>(random() % UnitList_.size()));
            if (*it != nullptr) {
                CKVunit* unit = *it;
                xunRemoveUnit_(unit);
                reference.Clear();
                removed.emplace_back(unit);
            }
        } else if (action < 35) {
            // Null elements, which every walk skips.
            if (random() % 2)
                UnitList_.push_back(nullptr);
            else
                UnitList_.push_front(nullptr);
        } else if (action < 55) {
            // The find routine itself, for a listed, a removed, an unknown or
            // a null unit.
            const CKVunit* unit = nullptr;
            if (!everUsed.empty() && random() % 5 != 0)
                unit = everUsed[random() % everUsed.size()];
            if (random() % 4 == 0)
                unit = reference.prevFoundUn; // the same one again
            ASSERT_EQ(xunFindUnit_(unit) == UnitList_.end(),
                      reference.Find(unit) == UnitList_.end());
            // Both point at the same element (the caches are in step).
            ASSERT_EQ(xunFindUnit_(unit) == reference.Find(unit), true);
        } else if (action < 85) {
            const int prevTag = static_cast<int>(random() % 10 == 0 ? 0 : random() % 420) - 20;
            int tag = -7, refTag = -7;
            const char* key = "untouched";
            const char* refKey = "untouched";
            const int result = xunGetNextUnit(prevTag, &tag, &key);
            ASSERT_EQ(result, ReferenceNextUnit(reference, prevTag, &refTag, &refKey)) << prevTag;
            ASSERT_EQ(tag, refTag);
            ASSERT_EQ(key, refKey);
        } else if (!UnitList_.empty()) {
            // An equivalence walk needs a known reference unit.
            const CKVunit* unit =
                *std::next(UnitList_.begin(), static_cast<long>(random() % UnitList_.size()));
            if (unit == nullptr || MapLookup(unit->m_lKey) != unit)
                continue;
            const int tag = static_cast<int>(unit->m_lKey);
            const int prevTag = static_cast<int>(random() % 10 == 0 ? 0 : random() % 420) - 20;
            int next = -7, refNext = -7;
            const char* key = "untouched";
            const char* refKey = "untouched";
            const int result = xunGetNextEqvUnit(tag, prevTag, &next, &key);
            ASSERT_EQ(result, ReferenceNextEqvUnit(reference, tag, prevTag, &refNext, &refKey));
            ASSERT_EQ(next, refNext);
            ASSERT_EQ(key, refKey);
        }
        // The key and ident lookups agree with the maps at every step.
        if (step % 50 == 0) {
            for (long key = -25; key < 385; ++key)
                ASSERT_EQ(xunFindUnitByKey_(key), MapLookup(key)) << key;
            for (const auto& entry : UnitStringMap_)
                ASSERT_EQ(xunFindUnitByIdent_(entry.first), entry.second);
            ASSERT_EQ(xunFindUnitByIdent_("never"), nullptr);
        }
    }
}

TEST(UnitIndex, IterationMatchesTheWalkingFindRoutine) {
    for (uint64_t start = 1; start <= 4; ++start)
        RunRandomRegistry(start, 4000);
}

TEST(UnitIndex, FullWalksMatchTheWalkingFindRoutine) {
    // Walks to the end, as callers do, interleaved with repeated questions.
    std::mt19937_64 random(9);
    ReferenceFind reference;
    for (int i = 0; i < 300; ++i) {
        auto* unit =
            new CKVunit("d" + std::to_string(i), "a", 1000 + i, 1.0, 0.0, RandomDimension(random));
        unit->m_strIdent = "i" + std::to_string(i);
        ASSERT_EQ(AddUnit_(*unit, static_cast<int>(i % 7 == 0)), 1);
    }
    int visited = 0;
    int prev = 0, tag = 0, refTag = 0;
    const char* key = nullptr;
    const char* refKey = nullptr;
    for (;;) {
        const int result = xunGetNextUnit(prev, &tag, &key);
        ASSERT_EQ(result, ReferenceNextUnit(reference, prev, &refTag, &refKey));
        if (!result)
            break;
        ASSERT_EQ(tag, refTag);
        ASSERT_EQ(key, refKey);
        // The same question again is answered from the cache.
        ASSERT_EQ(xunGetNextUnit(prev, &tag, &key), 1);
        ASSERT_EQ(ReferenceNextUnit(reference, prev, &refTag, &refKey), 1);
        ASSERT_EQ(tag, refTag);
        prev = tag;
        ++visited;
    }
    EXPECT_EQ(visited, 300);
}

TEST(UnitIndex, MissedLookupsInsertNothing) {
    auto* unit = new CKVunit("meter", "m", 10, 1.0, 0.0, CKVdimension::GetLength());
    unit->m_strIdent = "m";
    ASSERT_EQ(AddUnit_(*unit, 0), 1);
    const char* text = nullptr;
    int tag = 0;
    double value = 0;
    EXPECT_EQ(xunGetUnitKey(11, &text), 0);
    EXPECT_EQ(xunGetUnitIdent(12, &text), 0);
    EXPECT_EQ(xunGetUnitAbbreviation(13, &text), 0);
    EXPECT_EQ(xunGetUnitTagFromIdent("km", &tag), 0);
    EXPECT_EQ(xunConvertUnit(10, 14, &value, 1.0), 0);
    EXPECT_EQ(xunConvertUnitToBase(15, &value, 1.0), 0);
    EXPECT_EQ(xunGetNextUnit(16, &tag, &text), 0);
    EXPECT_EQ(xunUnitsEqv(10, 17), 0);
    EXPECT_EQ(UnitMap_.size(), 1u);
    EXPECT_EQ(UnitStringMap_.size(), 1u);
    EXPECT_EQ(UnitList_.size(), 1u);
}

// --- what the key index keeps for conversions ------------------------------

// Registers an anonymous unit of its own dimension (owned by the unit).
CKVunit* Register(const char* ident, long key, double factor, double offset,
                  const CKVdimension& dim) {
    CKVunit* unit = new CKVunit(factor, dim);
    unit->m_dOffset = offset;
    unit->m_strIdent = ident;
    unit->m_lKey = key;
    EXPECT_EQ(AddUnit_(*unit, 0), 1) << ident;
    return unit;
}

TEST(UnitKeyIndex, ConvertsBetweenEqualDimensionsHeldApart) {
    // Two units own equal copies of a composite dimension; a negative zero
    // exponent equals a zero one.
    Register("Speed1", 11, 2.0, 0.0, CKVdimension(1, 0, -1, 0, 0, 0, 0));
    Register("Speed2", 12, 3.0, 1.0, CKVdimension(1, -0.0, -1, 0, 0, 0, 0));
    Register("Other", 13, 5.0, 0.0, CKVdimension(1, 0, -2, 0, 0, 0, 0));
    double result = 0.0;
    EXPECT_EQ(xunConvertUnit(11, 12, &result, 7.0), 1);
    EXPECT_EQ(result, ((7.0 * 2.0 + 0.0) - 1.0) / 3.0);
    EXPECT_EQ(xunConvertUnit(12, 11, &result, 7.0), 1);
    EXPECT_EQ(result, ((7.0 * 3.0 + 1.0) - 0.0) / 2.0);
    result = 42.0;
    EXPECT_EQ(xunConvertUnit(11, 13, &result, 7.0), 0);
    EXPECT_EQ(result, 7.0);
    std::vector<double> values{1.0, 2.0};
    EXPECT_EQ(xunConvertItemArrayD(13, 12, values.data(), 2, -1.0), 0);
    EXPECT_EQ(values, (std::vector<double>{1.0, 2.0}));
}

TEST(UnitKeyIndex, DimensionWithNaNExponentEqualsNothingNotEvenItself) {
    Register("Odd", 21, 1.5, 0.0, CKVdimension(NAN, 0, 0, 0, 0, 0, 0));
    Register("Plain", 22, 1.0, 0.0, CKVdimension(1, 0, 0, 0, 0, 0, 0));
    double result = 0.0;
    EXPECT_EQ(xunConvertUnit(21, 21, &result, 2.0), 0);
    EXPECT_EQ(xunConvertUnit(21, 22, &result, 2.0), 0);
    EXPECT_EQ(xunConvertUnit(22, 21, &result, 2.0), 0);
    EXPECT_EQ(xunConvertUnit(22, 22, &result, 2.0), 1);
    EXPECT_EQ(result, 2.0);
}

TEST(UnitKeyIndexDeathTest, UnitBrokenBeforeRegistrationStillFailsItsChecks) {
    // A unit that holds a borrowed and an owned dimension at once is caught
    // by the checks of the conversion, as before the index kept anything.
    EXPECT_DEATH(
        {
            static const CKVdimension length(1, 0, 0, 0, 0, 0, 0);
            Register("Good", 32, 1.0, 0.0, length);
            CKVunit* late = new CKVunit(2.0, length);
            late->m_pDimParent = &length;
            late->m_strIdent = "Late";
            late->m_lKey = 33;
            AddUnit_(*late, 0);
            double result = 0.0;
            xunConvertUnit(33, 32, &result, 1.0);
        },
        "KVunit:284: void CKVunit::AssertValid\\(\\) const: Assertion "
        "`\\(m_pDimParent == 0\\) != \\(m_pDimTemp == 0\\)' failed\\.");
}

} // namespace
