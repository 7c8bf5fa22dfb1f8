// The severities of xunSetupCheck and xunBaseGroupCheck as the check tests
// write them in their expected reports.
#pragma once

#include "xun.h"

inline const char* CheckSeverityName(int severity) {
    switch (severity) {
    case XUN_CHECK_DROPPED:
        return "dropped";
    case XUN_CHECK_MESSAGE:
        return "message";
    case XUN_CHECK_FATAL:
        return "FATAL";
    case XUN_CHECK_WARNING:
        return "warning";
    }
    return "?";
}
