// Exported checks: the whole load of a setup file (and its language files),
// or of a unit base-group file, run on a copy of the registry with every
// problem reported, nothing printed, nothing ended and nothing changed.
#include "capi/Api.h"
#include "langfile/UnitBaseGroup.h"
#include "setup/LoadTables.h"
#include "setup/SetupLoader.h"

using namespace xun::capi;

namespace {

// Hands the problems of a check to the host's report function: what a load
// drops, the messages it prints, what ends it, and what it loads but will
// not work as probably meant.
class CallbackObserver : public IXunLoadObserver {
  public:
    CallbackObserver(xunCheckReport report, void* user) : m_report(report), m_user(user) {}

    void OnLoadEvent(const XunLoadEvent& event) override {
        int severity = 0;
        switch (event.outcome) {
        case XunOutcome::Dropped:
            severity = XUN_CHECK_DROPPED;
            break;
        case XunOutcome::Message:
            severity = XUN_CHECK_MESSAGE;
            break;
        case XunOutcome::Fatal:
            severity = XUN_CHECK_FATAL;
            break;
        case XunOutcome::Warning:
            severity = XUN_CHECK_WARNING;
            break;
        case XunOutcome::Added:
        case XunOutcome::Refreshed:
            return;
        }
        if (m_report != nullptr)
            m_report(m_user, event.file.c_str(), static_cast<int>(event.line), severity,
                     event.message.c_str());
    }

  private:
    xunCheckReport m_report;
    void* m_user;
};

std::string Folder(const char* dir) {
    std::string folder(dir);
    if (!folder.empty() && folder.back() != '/')
        folder += '/';
    return folder;
}

} // namespace

extern "C" {

int xunSetupCheck(const char* setupPath, const char* langDir, xunCheckReport report, void* user) {
    return Guard("xunSetupCheck", -1, [&] {
        std::unique_ptr<CKVregistries> scratch = Registries().Copy();
        CallbackObserver observer(report, user);
        CXunLoadReport check(&observer, true);
        std::string fileName, refusal;
        if (!xunLoadSetupFile_(*scratch, setupPath, check, fileName, &refusal)) {
            if (!refusal.empty())
                xunFail_(XUN_ERR_LIMIT, "xunSetupCheck: the setup file '%s' is refused: %s",
                         fileName.c_str(), refusal.c_str());
            else
                xunFail_(XUN_ERR_FILE,
                         "xunSetupCheck: the setup file '%s' cannot be read or is not "
                         "well-formed XML",
                         fileName.c_str());
            return -1;
        }
        if (langDir != nullptr)
            xunApplyLanguageFiles_(*scratch, Folder(langDir), check);
        return check.FatalCount();
    });
}

int xunBaseGroupCheck(const char* path, xunCheckReport report, void* user) {
    return Guard("xunBaseGroupCheck", -1, [&] {
        std::unique_ptr<CKVregistries> scratch = Registries().Copy();
        CallbackObserver observer(report, user);
        CXunLoadReport check(&observer, true);
        if (!xunApplyBaseGroupFile_(*scratch, path, check)) {
            xunFail_(XUN_ERR_FILE, "xunBaseGroupCheck: the file '%s' is not loaded",
                     path != nullptr ? path : "");
            return -1;
        }
        return 0;
    });
}

} // extern "C"
