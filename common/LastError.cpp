#include "common/LastError.h"

#include <cstdarg>
#include <cstdio>

#include "common/Contract.h"

namespace {

struct Record {
    int code = 0;
    char message[xun::contract::kLastErrorMessageSize] = {};
};

thread_local Record LastError_;

} // namespace

int xunFail_(int code, const char* format, ...) {
    Record& record = LastError_;
    record.code = code;
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(record.message, sizeof record.message, format, args);
    va_end(args);
    // A message cut to fit ends with "..." so that a reader can tell.
    if (length >= static_cast<int>(sizeof record.message)) {
        char* end = record.message + sizeof record.message - 4;
        end[0] = end[1] = end[2] = '.';
        end[3] = '\0';
    }
    return 0;
}

int xunLastErrorCode_() {
    return LastError_.code;
}

const char* xunLastErrorMessage_() {
    return LastError_.message;
}

void xunClearLastError_() {
    LastError_.code = 0;
    LastError_.message[0] = '\0';
}
