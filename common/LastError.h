// The last-error record of the C interface: per thread, the code and the
// message of the last exported call that failed on that thread. Recording
// never allocates (the message lives in a fixed buffer and is cut to fit),
// so that running out of memory can be recorded too. No locks.
#pragma once

// Records a failure: code (one of the XUN_ERR_... values of xun.h) and a
// printf-style message. Returns 0, the failed result of most calls.
int xunFail_(int code, const char* format, ...) __attribute__((format(printf, 2, 3)));

// The record of the calling thread: the code (0 when none) and the message
// ("" when none). The text stays valid until the next failure recorded on
// the thread.
int xunLastErrorCode_();
const char* xunLastErrorMessage_();

// Resets the record of the calling thread.
void xunClearLastError_();
