#include "Common.h"

#include <cstdio>

#include "Output.h"
#include "xun.h"

namespace xuntool {

bool ParseCommand(const std::string& command, const Args& args,
                  const std::vector<OptionSpec>& options, size_t minArgs, size_t maxArgs,
                  ParsedArgs& parsed, int& status) {
    std::vector<OptionSpec> allowed = DataOptions();
    allowed.insert(allowed.end(), options.begin(), options.end());
    std::string error;
    if (!ParseArgs(args, allowed, parsed, error)) {
        status = UsageError(command, error);
        return false;
    }
    if (parsed.Has("--help")) {
        status = PrintHelp(command);
        return false;
    }
    if (parsed.positionals.size() < minArgs) {
        status = UsageError(command, "missing argument");
        return false;
    }
    if (parsed.positionals.size() > maxArgs) {
        status = UsageError(command, "unexpected argument '" + parsed.positionals[maxArgs] + "'");
        return false;
    }
    if (parsed.Has("--home") && parsed.Value("--home").empty()) {
        status = UsageError(command, "option '--home' needs a directory");
        return false;
    }
    return true;
}

bool LoadData(const std::string& command, const ParsedArgs& parsed, DataLocation& location,
              int& status) {
    (void)command;
    std::string error;
    if (!ResolveLocation(parsed, "", location, error)) {
        status = Fail(kExitFailed, error);
        return false;
    }
    status = LoadLocation(location);
    return status == kExitOk;
}

std::string FilterBitText(int bit) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned int>(bit));
    return text;
}

std::string Text(const char* text) {
    return text != nullptr ? text : "";
}

UnitInfo GetUnitInfo(int tag) {
    UnitInfo info;
    info.tag = tag;
    const char* text = nullptr;
    if (xunGetUnitIdent(tag, &text))
        info.ident = Text(text);
    if (xunGetUnitKey(tag, &text))
        info.description = Text(text);
    if (xunGetUnitAbbreviation(tag, &text))
        info.abbreviation = Text(text);
    double factors[7];
    xunUnitGetParameters(tag, &info.factor, &info.offset, info.powers, factors);
    return info;
}

} // namespace xuntool
