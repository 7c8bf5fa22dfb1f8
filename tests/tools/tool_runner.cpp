#include "tool_runner.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

extern char** environ;

namespace xuntest {

namespace {

std::string ReadAll(std::FILE* file) {
    std::string text;
    std::rewind(file);
    char buffer[65536];
    size_t count = 0;
    while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0)
        text.append(buffer, count);
    return text;
}

// A minimal strict JSON parser that only says whether the text is valid.
class JsonCheck {
  public:
    explicit JsonCheck(const std::string& text) : m_text(text) {}

    bool Document() {
        SkipBlanks();
        if (!Value(0))
            return false;
        SkipBlanks();
        return m_pos == m_text.size();
    }

  private:
    void SkipBlanks() {
        while (m_pos < m_text.size() && (m_text[m_pos] == ' ' || m_text[m_pos] == '\t' ||
                                         m_text[m_pos] == '\n' || m_text[m_pos] == '\r'))
            ++m_pos;
    }
    bool Take(char c) {
        if (m_pos < m_text.size() && m_text[m_pos] == c) {
            ++m_pos;
            return true;
        }
        return false;
    }
    bool Literal(const char* word) {
        const size_t length = std::strlen(word);
        if (m_text.compare(m_pos, length, word) != 0)
            return false;
        m_pos += length;
        return true;
    }
    bool Digits() {
        const size_t start = m_pos;
        while (m_pos < m_text.size() && m_text[m_pos] >= '0' && m_text[m_pos] <= '9')
            ++m_pos;
        return m_pos > start;
    }
    bool Number() {
        Take('-');
        if (Take('0')) {
        } else if (!Digits()) {
            return false;
        }
        if (Take('.') && !Digits())
            return false;
        if (Take('e') || Take('E')) {
            if (!Take('+'))
                Take('-');
            if (!Digits())
                return false;
        }
        return true;
    }
    bool Utf8() {
        const unsigned char c = static_cast<unsigned char>(m_text[m_pos]);
        size_t length = 0;
        unsigned long code = 0;
        if (c >= 0xC2 && c <= 0xDF) {
            length = 2;
            code = c & 0x1F;
        } else if (c >= 0xE0 && c <= 0xEF) {
            length = 3;
            code = c & 0x0F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            length = 4;
            code = c & 0x07;
        } else {
            return false;
        }
        if (m_pos + length > m_text.size())
            return false;
        for (size_t k = 1; k < length; ++k) {
            const unsigned char next = static_cast<unsigned char>(m_text[m_pos + k]);
            if ((next & 0xC0) != 0x80)
                return false;
            code = (code << 6) | (next & 0x3F);
        }
        if ((length == 3 && code < 0x800) || (length == 4 && code < 0x10000) || code > 0x10FFFF ||
            (code >= 0xD800 && code <= 0xDFFF))
            return false;
        m_pos += length;
        return true;
    }
    bool String() {
        if (!Take('"'))
            return false;
        while (m_pos < m_text.size()) {
            const unsigned char c = static_cast<unsigned char>(m_text[m_pos]);
            if (c == '"') {
                ++m_pos;
                return true;
            }
            if (c < 0x20)
                return false;
            if (c == '\\') {
                ++m_pos;
                if (m_pos >= m_text.size())
                    return false;
                const char e = m_text[m_pos++];
                if (e == 'u') {
                    for (int k = 0; k < 4; ++k, ++m_pos)
                        if (m_pos >= m_text.size() ||
                            !std::isxdigit(static_cast<unsigned char>(m_text[m_pos])))
                            return false;
                } else if (std::strchr("\"\\/bfnrt", e) == nullptr || e == '\0') {
                    return false;
                }
                continue;
            }
            if (c < 0x80) {
                ++m_pos;
                continue;
            }
            if (!Utf8())
                return false;
        }
        return false;
    }
    bool Value(int depth) {
        if (depth > 100 || m_pos >= m_text.size())
            return false;
        const char c = m_text[m_pos];
        if (c == '{') {
            ++m_pos;
            SkipBlanks();
            if (Take('}'))
                return true;
            do {
                SkipBlanks();
                if (!String())
                    return false;
                SkipBlanks();
                if (!Take(':'))
                    return false;
                SkipBlanks();
                if (!Value(depth + 1))
                    return false;
                SkipBlanks();
            } while (Take(','));
            return Take('}');
        }
        if (c == '[') {
            ++m_pos;
            SkipBlanks();
            if (Take(']'))
                return true;
            do {
                SkipBlanks();
                if (!Value(depth + 1))
                    return false;
                SkipBlanks();
            } while (Take(','));
            return Take(']');
        }
        if (c == '"')
            return String();
        if (c == 't')
            return Literal("true");
        if (c == 'f')
            return Literal("false");
        if (c == 'n')
            return Literal("null");
        return Number();
    }

    const std::string& m_text;
    size_t m_pos = 0;
};

} // namespace

std::string SourceDir() {
    return XUN_SOURCE_DIR;
}

std::string FixtureDir() {
    return SourceDir() + "/tests/data/tools";
}

std::string MakeTempDir() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern =
        std::string(base != nullptr && base[0] != '\0' ? base : "/tmp") + "/xun-tool-test-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    const char* made = ::mkdtemp(buffer.data());
    return made != nullptr ? made : "";
}

ToolResult RunTool(const ToolRun& run) {
    ToolResult result;
    std::FILE* in = std::tmpfile();
    std::FILE* out = std::tmpfile();
    std::FILE* err = std::tmpfile();
    if (in == nullptr || out == nullptr || err == nullptr)
        return result;
    std::fwrite(run.input.data(), 1, run.input.size(), in);
    std::fflush(in);
    std::rewind(in);

    std::vector<std::string> args;
    args.push_back(XUN_TOOL_PATH);
    args.insert(args.end(), run.args.begin(), run.args.end());
    std::vector<char*> argv;
    for (std::string& arg : args)
        argv.push_back(&arg[0]);
    argv.push_back(nullptr);
    const std::string cwd = run.cwd.empty() ? FixtureDir() : run.cwd;

    int terminal = -1;
    int terminalSide = -1;
    if (run.terminalInput && ::openpty(&terminal, &terminalSide, nullptr, nullptr, nullptr) != 0)
        return result;

    std::fflush(nullptr);
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(run.terminalInput ? terminalSide : fileno(in), 0);
        ::dup2(fileno(out), 1);
        ::dup2(fileno(err), 2);
        if (!run.keepKorvaneHome)
            ::unsetenv("KORVANE_HOME");
        for (const std::string& setting : run.env) {
            const size_t equals = setting.find('=');
            ::setenv(setting.substr(0, equals).c_str(), setting.substr(equals + 1).c_str(), 1);
        }
        if (::chdir(cwd.c_str()) != 0)
            ::_exit(126);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    if (run.terminalInput) {
        ::close(terminalSide);
        // Typed line by line; Ctrl-D at the start of a line ends the input.
        std::string typed = run.input + "\x04";
        ssize_t written = 0;
        for (size_t done = 0; done < typed.size(); done += static_cast<size_t>(written)) {
            written = ::write(terminal, typed.data() + done, typed.size() - done);
            if (written <= 0)
                break;
        }
    }
    int status = 0;
    if (pid > 0 && ::waitpid(pid, &status, 0) == pid) {
        if (WIFEXITED(status))
            result.status = WEXITSTATUS(status);
        else if (WIFSIGNALED(status))
            result.status = 128 + WTERMSIG(status);
    }
    if (run.terminalInput)
        ::close(terminal);
    result.out = ReadAll(out);
    result.err = ReadAll(err);
    std::fclose(in);
    std::fclose(out);
    std::fclose(err);
    return result;
}

ToolResult Xun(const std::vector<std::string>& args, const std::string& input) {
    ToolRun run;
    run.args = args;
    run.input = input;
    return RunTool(run);
}

bool IsValidJson(const std::string& text) {
    return JsonCheck(text).Document();
}

} // namespace xuntest
