// What a load does with each row of a setup file, each entry of a language
// file and each assignment of a base-group file, told to an optional
// observer; and how a load acts on what ends it.
//
// The load rules exist once (setup/, langfile/). They run in one of two
// modes:
// - a load: messages are printed as designed, and what breaks an invariant
//   ends the process through its assertion;
// - a check (checkOnly): nothing is printed and nothing ends the process;
//   everything is only reported, and the load goes on with the next row.
// In both modes an observer, when there is one, hears of every outcome.
#pragma once

#include <cstdio>
#include <string>

#include "common/Contract.h"

enum class XunOutcome {
    Added,     // registered
    Refreshed, // already registered: its texts (and the like) were refreshed
    Dropped,   // dropped or ignored without a word (what and why)
    Message,   // a message the load prints (and goes on)
    Fatal,     // the load ends the process here (assertion)
    Warning,   // loaded as written, but it will not work as probably meant
};

struct XunLoadEvent {
    XunOutcome outcome;
    const std::string& file;
    long line;                     // 0: the file as a whole
    const std::string& message;    // what and why, in words
    const XunAssertion* assertion; // Fatal: the assertion that ends the process
    const std::string* printed;    // Message: the text the load prints
};

class IXunLoadObserver {
  public:
    virtual ~IXunLoadObserver() = default;
    virtual void OnLoadEvent(const XunLoadEvent& event) = 0;
};

class CXunLoadReport {
  public:
    explicit CXunLoadReport(IXunLoadObserver* observer = nullptr, bool checkOnly = false)
        : m_observer(observer), m_checkOnly(checkOnly) {}

    // Whether anybody listens: callers skip composing messages otherwise.
    bool Observed() const { return m_observer != nullptr; }
    bool CheckOnly() const { return m_checkOnly; }

    void Added(const std::string& file, long line, const std::string& what) {
        Tell(XunOutcome::Added, file, line, what, nullptr);
    }
    void Refreshed(const std::string& file, long line, const std::string& what) {
        Tell(XunOutcome::Refreshed, file, line, what, nullptr);
    }
    void Dropped(const std::string& file, long line, const std::string& what) {
        Tell(XunOutcome::Dropped, file, line, what, nullptr);
    }
    void Warning(const std::string& file, long line, const std::string& what) {
        Tell(XunOutcome::Warning, file, line, what, nullptr);
    }

    // A message the load prints on stream (printed, exactly); in a check it
    // is only reported, with why.
    void Message(std::FILE* stream, const std::string& printed, const std::string& file, long line,
                 const std::string& why);

    // What ends the process: in a load the assertion does (this does not
    // return); in a check it is reported, counted, and the caller goes on.
    void Fatal(const XunAssertion& assertion, const std::string& file, long line,
               const std::string& why);

    // The number of Fatal outcomes reported so far.
    int FatalCount() const { return m_fatalCount; }
    // The number of messages so far (printed, in a load).
    int MessageCount() const { return m_messageCount; }

  private:
    void Tell(XunOutcome outcome, const std::string& file, long line, const std::string& message,
              const XunAssertion* assertion, const std::string* printed = nullptr) {
        if (m_observer != nullptr)
            m_observer->OnLoadEvent(XunLoadEvent{outcome, file, line, message, assertion, printed});
    }

    IXunLoadObserver* m_observer;
    bool m_checkOnly;
    int m_fatalCount = 0;
    int m_messageCount = 0;
};
