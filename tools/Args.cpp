#include "Args.h"

#include <algorithm>
#include <cctype>

namespace xuntool {

bool ParsedArgs::Has(const std::string& name) const {
    return values.count(name) != 0 || std::find(flags.begin(), flags.end(), name) != flags.end();
}

std::string ParsedArgs::Value(const std::string& name, const std::string& fallback) const {
    std::map<std::string, std::string>::const_iterator it = values.find(name);
    return it != values.end() ? it->second : fallback;
}

bool LooksLikeOption(const std::string& text) {
    if (text.size() < 2 || text[0] != '-')
        return false;
    const unsigned char next = static_cast<unsigned char>(text[1]);
    return !(std::isdigit(next) || next == '.');
}

const std::vector<OptionSpec>& DataOptions() {
    static const std::vector<OptionSpec> options = {
        {"--setup", true}, {"--home", true}, {"--help", false}};
    return options;
}

bool ParseArgs(const std::vector<std::string>& args, const std::vector<OptionSpec>& allowed,
               ParsedArgs& parsed, std::string& error) {
    bool optionsEnded = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (optionsEnded || !LooksLikeOption(arg)) {
            parsed.positionals.push_back(arg);
            continue;
        }
        if (arg == "--") {
            optionsEnded = true;
            continue;
        }
        std::string name = arg;
        std::string value;
        bool inlineValue = false;
        const size_t equals = arg.find('=');
        if (arg.compare(0, 2, "--") == 0 && equals != std::string::npos) {
            name = arg.substr(0, equals);
            value = arg.substr(equals + 1);
            inlineValue = true;
        }
        if (name == "-h")
            name = "--help";
        const OptionSpec* known = nullptr;
        for (const OptionSpec& candidate : allowed)
            if (name == candidate.name)
                known = &candidate;
        if (known == nullptr) {
            error = "unknown option '" + name + "'";
            return false;
        }
        if (parsed.Has(name)) {
            error = "option '" + name + "' given twice";
            return false;
        }
        if (!known->takesValue) {
            if (inlineValue) {
                error = "option '" + name + "' takes no value";
                return false;
            }
            parsed.flags.push_back(name);
            continue;
        }
        if (!inlineValue) {
            if (i + 1 >= args.size()) {
                error = "option '" + name + "' needs a value";
                return false;
            }
            value = args[++i];
        }
        parsed.values[name] = value;
    }
    return true;
}

} // namespace xuntool
