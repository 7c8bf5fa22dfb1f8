// Fuzz target: unit strings (xunParseUnit) over the units of a loaded
// installation. The input is the text (up to its first NUL byte). Whatever
// it is, the call answers - a unit, or a failure with a code and a reason -
// and the process goes on. A text that gives a unit is checked further: the
// unit is registered, its texts in the three notations read back to a unit
// of the same meaning, the reading for the any-unit item type (which makes
// no unit) agrees, and the registry keeps its invariants.
//
// Texts of new meanings register units, which pile up over millions of
// inputs: after a few thousand of them the registry is emptied and the
// installation loaded again.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzSupport.h"
#include "registry/Registries.h"
#include "xun.h"

namespace {

std::size_t LoadedUnits_ = 0;
const std::size_t kRunTimeUnitsBeforeReload = 3000;

struct Meaning {
    double factor, offset, powers[7];
};

Meaning MeaningOf(int tag) {
    Meaning m{};
    double factors[7];
    if (xunUnitGetParameters(tag, &m.factor, &m.offset, m.powers, factors) != 1)
        xunFuzzFail("a unit from xunParseUnit has no parameters");
    return m;
}

bool SameMeaning(const Meaning& a, const Meaning& b) {
    for (int i = 0; i < 7; ++i)
        if (a.powers[i] != b.powers[i])
            return false;
    const double scale = std::fabs(a.factor);
    return std::fabs(a.factor - b.factor) <= 1e-12 * scale &&
           std::fabs(a.offset - b.offset) <= 1e-12 * std::fmax(std::fabs(a.offset), scale);
}

void CheckFailure(int tag) {
    if (tag != 0)
        xunFuzzFail("a failed xunParseUnit left a tag");
    const char* message = nullptr;
    const int code = xunGetLastError(&message);
    if (code != XUN_ERR_EXPRESSION && code != XUN_ERR_NOT_FOUND && code != XUN_ERR_LIMIT &&
        code != XUN_ERR_NO_REAL_UNIT && code != XUN_ERR_TAKEN)
        xunFuzzFail("xunParseUnit failed with an unexpected code");
    if (message == nullptr || message[0] == '\0')
        xunFuzzFail("xunParseUnit failed without a reason");
}

void Reload() {
    xunFuzzClearRegistries();
    xunFuzzLoadInstallation();
    LoadedUnits_ = xunRegistries_().units.Count();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xunFuzzInit();
    xunFuzzLoadInstallation();
    LoadedUnits_ = xunRegistries_().units.Count();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (xunRegistries_().units.Count() > LoadedUnits_ + kRunTimeUnitsBeforeReload)
        Reload();
    const std::string text(reinterpret_cast<const char*>(data), size);
    int tag = -1;
    if (xunParseUnit(text.c_str(), &tag) != 1) {
        CheckFailure(tag);
        return 0;
    }
    if (xunRegistries_().units.FindByKey(tag) == nullptr)
        xunFuzzFail("xunParseUnit answered with a unit that is not registered");
    const Meaning meaning = MeaningOf(tag);
    // The same text again gives the same unit.
    int again = 0;
    if (xunParseUnit(text.c_str(), &again) != 1 || again != tag)
        xunFuzzFail("the same text gave another unit");
    // Each notation reads back to a unit of the same meaning.
    for (int notation : {XUN_NOTATION_CF, XUN_NOTATION_ASCII, XUN_NOTATION_UNICODE}) {
        const char* written = nullptr;
        if (xunGetUnitText(tag, notation, &written) != 1 || written == nullptr)
            xunFuzzFail("xunGetUnitText failed for a unit of xunParseUnit");
        const std::string copy(written);
        int back = 0;
        if (xunParseUnit(copy.c_str(), &back) != 1)
            xunFuzzFail("a text of xunGetUnitText does not read back");
        if (!SameMeaning(meaning, MeaningOf(back)))
            xunFuzzFail("a text of xunGetUnitText reads back to another meaning");
    }
    // The any-unit item type answers with a registered unit of the meaning.
    int any = 0;
    if (xunParseItemUnit(999, text.c_str(), &any) == 1 && !SameMeaning(meaning, MeaningOf(any)))
        xunFuzzFail("xunParseItemUnit gave another meaning");
    try {
        xunRegistries_().CheckInvariants();
    } catch (const std::exception&) {
        xunFuzzFail("the registry broke an invariant");
    }
    return 0;
}
