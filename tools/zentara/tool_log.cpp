#include "tools/zentara/tool_log.h"

#include <atomic>
#include <cstdio>
#include <exception>
#include <string>

namespace Zentara::Tool {

using Utils::Threading::AutoLock;

namespace {

std::atomic<ToolLog*> present = nullptr;

} // namespace

ToolLog::ToolLog(bool isWanted) : wanted(isWanted) { present = this; }

ToolLog::~ToolLog() {
    present = nullptr;
    logged.stop();
    show();
}

ToolLog* ToolLog::current() noexcept { return present; }

void ToolLog::show() {
    AutoLock hold(lock);
    if (!wanted || isSilent)
        return;
    const std::string text = logged.since(shown);
    std::fwrite(text.data(), 1, text.size(), stderr);
    shown += text.size();
}

ToolLog::Silence::Silence() : exceptions(std::uncaught_exceptions()) {
    if (ToolLog* log = current()) {
        log->show();
        from = log->logged.end();
        AutoLock hold(log->lock);
        log->isSilent = true;
    }
}

ToolLog::Silence::~Silence() {
    ToolLog* log = current();
    if (log == nullptr)
        return;
    if (std::uncaught_exceptions() == exceptions)
        log->logged.forget(from);
    AutoLock hold(log->lock);
    log->isSilent = false;
}

} // namespace Zentara::Tool
