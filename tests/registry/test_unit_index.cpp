// The registry's lookup indexes: the hash table itself against std::map, and
// the unit lookups and walks against a plain model of the registry - a list
// in registration order and ordered maps - over random registries with units
// added at either end, units removed and units of key 0.
#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "registry/HashIndex.h"
#include "registry/Registries.h"
#include "registry/UnitRegistry.h"
#include "xun.h"
#include "registry_access.h"

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

TEST(HashIndex, LargeIndexesOnHugePagesAgreeWithAMap) {
    // 300,000 entries of 16 bytes take 8 MiB of slots, which come from the
    // huge-page allocation; the index grows through both kinds of array,
    // shrinks by removal and is copied.
    CKVhashIndex<long, long> index;
    std::map<long, long> model;
    std::mt19937_64 random(11);
    for (long i = 0; i < 300000; ++i) {
        const long key = static_cast<long>(random() % 1000000) - 500000;
        index.Set(key, i);
        model[key] = i;
    }
    for (long key = -500000; key < 500000; key += 3) {
        if (random() % 2 == 0) {
            index.Erase(key);
            model.erase(key);
        }
    }
    ASSERT_EQ(index.Size(), model.size());
    const CKVhashIndex<long, long> copy = index;
    for (long key = -500001; key <= 500001; ++key) {
        const long* found = copy.Find(key);
        const auto it = model.find(key);
        ASSERT_EQ(found != nullptr, it != model.end()) << key;
        if (found != nullptr) {
            ASSERT_EQ(*found, it->second) << key;
        }
    }
}

TEST(HashIndex, HashedViewsCompareTheirTextsWhenTheHashesAgree) {
    const CKVhashedView a(std::string_view("UnitMeter"));
    CKVhashedView b(std::string_view("UnitFoot"));
    EXPECT_FALSE(a == b);
    b.hash = a.hash; // two texts of one hash are still two keys
    EXPECT_FALSE(a == b);
    const std::string copy = "UnitMeter";
    EXPECT_TRUE(a == CKVhashedView(copy));

    std::vector<std::string> texts;
    for (int i = 0; i < 5000; ++i)
        texts.push_back("u" + std::to_string(i * 7919 % 10007));
    CKVhashIndex<CKVhashedView, int> index;
    std::map<std::string, int> model;
    for (size_t i = 0; i < texts.size(); ++i) {
        if (i % 5 == 4) {
            index.Erase(CKVhashedView(texts[i - 2]));
            model.erase(texts[i - 2]);
        } else {
            index.Set(CKVhashedView(texts[i]), static_cast<int>(i));
            model[texts[i]] = static_cast<int>(i);
        }
    }
    ASSERT_EQ(index.Size(), model.size());
    for (const std::string& text : texts) {
        // Found through a view of another copy of the text.
        const std::string other(text);
        const int* found = index.Find(CKVhashedView(other));
        const auto it = model.find(text);
        ASSERT_EQ(found != nullptr, it != model.end()) << text;
        if (found != nullptr) {
            ASSERT_EQ(*found, it->second) << text;
        }
    }
    EXPECT_EQ(index.Find(CKVhashedView(std::string_view("u"))), nullptr);
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

// --- the registry against a plain model --------------------------------------

// The registry as plain containers: the units in registration order and the
// maps by key and by ident, with the walks written as plain scans of the list.
struct Model {
    std::vector<const CKVunit*> list;
    std::map<long, const CKVunit*> byKey;
    std::map<std::string, const CKVunit*> byIdent;

    const CKVunit* Find(long key) const {
        const auto it = byKey.find(key);
        return it == byKey.end() ? nullptr : it->second;
    }
    // The position after the unit of prevTag (0: the start); -1 when unknown.
    long Start(int prevTag) const {
        if (prevTag == 0)
            return 0;
        const CKVunit* previous = Find(prevTag);
        for (size_t i = 0; i < list.size(); ++i)
            if (list[i] == previous)
                return static_cast<long>(i) + 1;
        return -1;
    }
    int NextUnit(int prevTag, int* nextTag, const char** nextKey) const {
        const long start = Start(prevTag);
        if (start < 0 || start >= static_cast<long>(list.size()) || list[start]->m_lKey == 0)
            return 0;
        *nextTag = static_cast<int>(list[start]->m_lKey);
        *nextKey = list[start]->m_strDesc.c_str();
        return 1;
    }
    int NextEqvUnit(int tag, int prevTag, int* nextTag, const char** nextKey) const {
        const CKVunit* reference = Find(tag);
        const long start = Start(prevTag);
        if (start < 0)
            return 0;
        for (size_t i = static_cast<size_t>(start); i < list.size(); ++i) {
            if (list[i]->IsEqv(*reference) && list[i]->m_lKey != 0) {
                *nextTag = static_cast<int>(list[i]->m_lKey);
                *nextKey = list[i]->m_strDesc.c_str();
                return 1;
            }
        }
        return 0;
    }
};

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

// One random registry, changed and queried in random order: units added at
// either end (some refused for a taken key or ident, some of key 0), units
// removed, walks and lookups compared with the model. The whole test runs in
// its own process, so it may fill the global registry.
void RunRandomRegistry(uint64_t start, int steps) {
    std::mt19937_64 random(start);
    Model model;
    CKVunitRegistry& units = xuntest::Registries().units;
    int serial = 0;
    for (int step = 0; step < steps; ++step) {
        const unsigned action = static_cast<unsigned>(random() % 100);
        if (action < 30) {
            ++serial;
            const long key = static_cast<long>(random() % 12 == 0 ? 0 : random() % 400) - 20;
            const std::string ident = "u" + std::to_string(random() % 500);
            std::unique_ptr<CKVunit> unit(new CKVunit(ident + " desc", ident, key, 1.0 + serial,
                                                      0.0, RandomDimension(random)));
            unit->m_strIdent = ident;
            const CKVunit* raw = unit.get();
            const bool taken = model.Find(key) != nullptr || model.byIdent.count(ident) != 0;
            const bool atFront = random() % 3 == 0;
            ASSERT_EQ(units.Add(unit, atFront), !taken);
            if (!taken) {
                model.list.insert(atFront ? model.list.begin() : model.list.end(), raw);
                model.byKey[key] = raw;
                model.byIdent[ident] = raw;
            }
        } else if (action < 35 && !model.list.empty()) {
            // Out again, as the setup loader takes out its base units.
            const size_t index = static_cast<size_t>(random() % model.list.size());
            const CKVunit* unit = model.list[index];
            model.list.erase(model.list.begin() + static_cast<long>(index));
            model.byKey.erase(unit->m_lKey);
            model.byIdent.erase(unit->m_strIdent);
            const std::unique_ptr<CKVunit> removed = units.Remove(unit);
            ASSERT_NE(removed, nullptr);
            // Taken out but alive: not found again.
            ASSERT_EQ(units.Remove(unit), nullptr);
        } else if (action < 70) {
            const int prevTag = static_cast<int>(random() % 10 == 0 ? 0 : random() % 420) - 20;
            int tag = -7, refTag = -7;
            const char* key = "untouched";
            const char* refKey = "untouched";
            const int result = xunGetNextUnit(prevTag, &tag, &key);
            ASSERT_EQ(result, model.NextUnit(prevTag, &refTag, &refKey)) << prevTag;
            ASSERT_EQ(tag, refTag);
            ASSERT_EQ(key, refKey);
        } else if (!model.list.empty()) {
            const CKVunit* unit = model.list[random() % model.list.size()];
            const int tag = static_cast<int>(unit->m_lKey);
            const int prevTag = static_cast<int>(random() % 10 == 0 ? 0 : random() % 420) - 20;
            int next = -7, refNext = -7;
            const char* key = "untouched";
            const char* refKey = "untouched";
            const int result = xunGetNextEqvUnit(tag, prevTag, &next, &key);
            ASSERT_EQ(result, model.NextEqvUnit(tag, prevTag, &refNext, &refKey));
            ASSERT_EQ(next, refNext);
            ASSERT_EQ(key, refKey);
        }
        // Lookups, order and invariants agree with the model now and then.
        if (step % 50 == 0) {
            for (long key = -25; key < 385; ++key)
                ASSERT_EQ(xuntest::UnitByKey(key), model.Find(key)) << key;
            for (const auto& entry : model.byIdent)
                ASSERT_EQ(xuntest::UnitByIdent(entry.first), entry.second);
            ASSERT_EQ(xuntest::UnitByIdent("never"), nullptr);
            ASSERT_EQ(xuntest::AllUnits(), model.list);
            ASSERT_EQ(xuntest::BrokenInvariant(), "");
        }
    }
}

TEST(UnitIndex, WalksAndLookupsMatchAPlainModel) {
    for (uint64_t start = 1; start <= 4; ++start) {
        xunResetRegistries_();
        RunRandomRegistry(start, 4000);
    }
}

TEST(UnitIndex, FullWalksVisitEveryUnitOnce) {
    std::mt19937_64 random(9);
    std::vector<int> expected;
    for (int i = 0; i < 300; ++i) {
        auto* unit =
            new CKVunit("d" + std::to_string(i), "a", 1000 + i, 1.0, 0.0, RandomDimension(random));
        unit->m_strIdent = "i" + std::to_string(i);
        const bool atFront = i % 7 == 0;
        ASSERT_EQ(xuntest::AddUnit(unit, atFront), 1);
        expected.insert(atFront ? expected.begin() : expected.end(), 1000 + i);
    }
    std::vector<int> visited;
    int prev = 0, tag = 0;
    const char* key = nullptr;
    while (xunGetNextUnit(prev, &tag, &key) == 1) {
        visited.push_back(tag);
        // The same question again gives the same answer.
        int again = 0;
        ASSERT_EQ(xunGetNextUnit(prev, &again, &key), 1);
        ASSERT_EQ(again, tag);
        prev = tag;
    }
    EXPECT_EQ(visited, expected);
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_END);
}

TEST(UnitIndex, AWalkGoesOnRightAfterTheUnitsChange) {
    // A walk remembers where its last unit stood; a unit added in front of
    // it, or one taken out before it, moves it, and the next step must find
    // it again.
    for (int i = 0; i < 6; ++i) {
        auto* unit = new CKVunit("d" + std::to_string(i), "a", 1000 + i, 1.0, 0.0,
                                 CKVdimension::GetLength());
        unit->m_strIdent = "i" + std::to_string(i);
        ASSERT_EQ(xuntest::AddUnit(unit, 0), 1);
    }
    int tag = 0, eqv = 0;
    const char* key = nullptr;
    ASSERT_EQ(xunGetNextUnit(1001, &tag, &key), 1);
    ASSERT_EQ(tag, 1002);
    ASSERT_EQ(xunGetNextEqvUnit(1000, 1001, &eqv, &key), 1);
    ASSERT_EQ(eqv, 1002);
    auto* front = new CKVunit("front", "f", 999, 1.0, 0.0, CKVdimension::GetLength());
    front->m_strIdent = "front";
    ASSERT_EQ(xuntest::AddUnit(front, 1), 1);
    ASSERT_EQ(xunGetNextUnit(1002, &tag, &key), 1);
    EXPECT_EQ(tag, 1003);
    ASSERT_EQ(xunGetNextEqvUnit(1000, 1002, &eqv, &key), 1);
    EXPECT_EQ(eqv, 1003);
    ASSERT_NE(xuntest::Registries().units.Remove(xuntest::UnitByKey(1000)), nullptr);
    ASSERT_NE(xuntest::Registries().units.Remove(xuntest::UnitByKey(999)), nullptr);
    ASSERT_EQ(xunGetNextUnit(1003, &tag, &key), 1);
    EXPECT_EQ(tag, 1004);
    ASSERT_EQ(xunGetNextEqvUnit(1001, 1003, &eqv, &key), 1);
    EXPECT_EQ(eqv, 1004);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
}

TEST(UnitIndex, MissedLookupsChangeNothing) {
    auto* unit = new CKVunit("meter", "m", 10, 1.0, 0.0, CKVdimension::GetLength());
    unit->m_strIdent = "m";
    ASSERT_EQ(xuntest::AddUnit(unit, 0), 1);
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
    EXPECT_EQ(xuntest::Registries().units.Count(), 1u);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
}

// --- what the key index keeps for conversions ------------------------------

// Registers an anonymous unit of its own dimension (owned by the unit).
CKVunit* Register(const char* ident, long key, double factor, double offset,
                  const CKVdimension& dim) {
    CKVunit* unit = new CKVunit(factor, dim);
    unit->m_dOffset = offset;
    unit->m_strIdent = ident;
    unit->m_lKey = key;
    EXPECT_EQ(xuntest::AddUnit(unit, 0), 1) << ident;
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
            xuntest::AddUnit(late, 0);
            double result = 0.0;
            xunConvertUnit(33, 32, &result, 1.0);
        },
        "KVunit:284: void CKVunit::AssertValid\\(\\) const: Assertion "
        "`\\(m_pDimParent == 0\\) != \\(m_pDimTemp == 0\\)' failed\\.");
}

// What code outside the registry derives from its units (the unit-string
// index) knows it is stale by the count of changes, and stays with the
// registry object it was made for.
TEST(UnitRegistryGeneration, CountsEveryChangeOfTheUnits) {
    CKVregistries registries;
    CKVunitRegistry& units = registries.units;
    const unsigned long long start = units.Generation();
    std::unique_ptr<CKVunit> meter(new CKVunit("meter", "m", 1000, 1.0, CKVdimension::GetLength()));
    meter->m_strIdent = "UnitMeter";
    const CKVunit* added = meter.get();
    ASSERT_TRUE(units.Add(meter, false));
    EXPECT_EQ(units.Generation(), start + 1);
    // A refused registration changes nothing and counts nothing.
    std::unique_ptr<CKVunit> twin(new CKVunit("meter", "m", 1000, 1.0, CKVdimension::GetLength()));
    twin->m_strIdent = "UnitMeter";
    EXPECT_FALSE(units.Add(twin, false));
    EXPECT_EQ(units.Generation(), start + 1);
    units.SetTexts(*added, "metre", "m");
    EXPECT_EQ(units.Generation(), start + 2);
    std::unique_ptr<CKVunit> removed = units.Remove(added);
    ASSERT_TRUE(removed != nullptr);
    EXPECT_EQ(units.Generation(), start + 3);
    EXPECT_TRUE(units.Remove(added) == nullptr);
    EXPECT_EQ(units.Generation(), start + 3);
}

TEST(UnitRegistryGeneration, DerivedDataStaysWithItsRegistry) {
    struct Derived : CKVunitRegistryCache {
        explicit Derived(bool& gone) : m_gone(gone) {}
        ~Derived() override { m_gone = true; }
        bool& m_gone;
    };
    bool gone = false;
    {
        CKVregistries registries;
        EXPECT_EQ(registries.units.Cache(), nullptr);
        registries.units.SetCache(std::unique_ptr<CKVunitRegistryCache>(new Derived(gone)));
        ASSERT_NE(registries.units.Cache(), nullptr);
        // A copy starts without it.
        std::unique_ptr<CKVregistries> copy = registries.Copy();
        EXPECT_EQ(copy->units.Cache(), nullptr);
        EXPECT_FALSE(gone);
    }
    EXPECT_TRUE(gone);
}

} // namespace
