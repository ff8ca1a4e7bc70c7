#include <zentara/utils/kv_logger.h>

#include <memory>

#include <zentara/utils/logger.h>
#include <zentara/utils/mutex.h>

#include "utils/immortal.h"
#include "utils/log_filter.h"
#include "utils/platform/error_text.h"
#include "utils/platform/system_log.h"
#include "utils/thread_tag.h"

namespace Zentara::Utils {

namespace {

constexpr const char* eventSourceName = "ZentaraSDK";

/// Guards the instance and its count. Never destroyed, for threads log while the process ends.
constinit Immortal<Threading::Mutex> instanceMutexStorage;

/// False for a level that the system's log does not get.
bool eventTypeOf(KVLogLevel level, Platform::SystemLogType& type) noexcept {
    switch (level) {
    case KVLogLevel_CRITICAL:
    case KVLogLevel_ERROR:
        type = Platform::SystemLogType::Error;
        return true;
    case KVLogLevel_WARNING:
        type = Platform::SystemLogType::Warning;
        return true;
    case KVLogLevel_INFO:
        type = Platform::SystemLogType::Information;
        return true;
    case KVLogLevel_OFF:
    case KVLogLevel_DEBUG:
    case KVLogLevel_VERBOSE:
        break;
    }
    return false;
}

struct CloseSystemLog {
    void operator()(void* log) const noexcept { Platform::closeSystemLog(log); }
};

} // namespace

struct KVLogger::Impl {
    Impl(KVLogLevel level, const char* name, const char* target)
        : eventSource(Platform::openSystemLog(eventSourceName)),
          logger(Logger::instance(level, name, target)) {}

    /// The file goes last, with its end banner.
    ~Impl() {
        eventSource.reset();
        Logger::release();
    }

    void report(Platform::SystemLogType type, const std::string& message) {
        const std::string tag(ThreadTag().text());
        const Threading::AutoLock lock(mutex);
        Platform::reportToSystemLog(eventSource.get(), type, tag, message);
    }

    Threading::Mutex mutex;                            ///< one report at a time
    std::unique_ptr<void, CloseSystemLog> eventSource; ///< null when the system's log is out of reach
    int count = 1;                                     ///< guarded by m_instanceMutex
    Logger* const logger;
};

KVLogger* KVLogger::m_instance = nullptr;
Threading::Mutex& KVLogger::m_instanceMutex = instanceMutexStorage.object;

// Whoever logs a failure of the system reads its number afterwards: logging leaves it alone, here and below.
KVLogger* KVLogger::createInstance(KVLogLevel level, const char* name, const char* target) {
    const Platform::LastErrorKeeper keeper;
    const Threading::AutoLock lock(m_instanceMutex);
    if (m_instance)
        ++m_instance->impl->count;
    else
        m_instance = new KVLogger(level, name, target);
    return m_instance;
}

KVLogger* KVLogger::instance() {
    const Threading::AutoLock lock(m_instanceMutex);
    if (m_instance)
        ++m_instance->impl->count;
    return m_instance;
}

void KVLogger::release() {
    const Platform::LastErrorKeeper keeper;
    const Threading::AutoLock lock(m_instanceMutex);
    if (!m_instance || --m_instance->impl->count > 0)
        return;
    delete m_instance;
    m_instance = nullptr;
}

KVLogger::KVLogger(KVLogLevel level, const char* name, const char* target)
    : impl(new Impl(level, name, target)) {}

KVLogger::~KVLogger() { delete impl; }

void KVLogger::log(KVLogLevel level, std::string message) noexcept {
    const Platform::LastErrorKeeper keeper;
    if (!passesLogFilter(level, message))
        return;
    impl->logger->log(level, message);
    Platform::SystemLogType type{};
    if (!impl->eventSource || !eventTypeOf(level, type))
        return;
    try {
        impl->report(type, message);
    } catch (...) {
        // Without memory there is no report.
    }
}

void KVLogger::critical(std::string message) noexcept { log(KVLogLevel_CRITICAL, std::move(message)); }
void KVLogger::error(std::string message) noexcept { log(KVLogLevel_ERROR, std::move(message)); }
void KVLogger::warning(std::string message) noexcept { log(KVLogLevel_WARNING, std::move(message)); }
void KVLogger::info(std::string message) noexcept { log(KVLogLevel_INFO, std::move(message)); }
void KVLogger::debug(std::string message) noexcept { log(KVLogLevel_DEBUG, std::move(message)); }
void KVLogger::verbose(std::string message) noexcept { log(KVLogLevel_VERBOSE, std::move(message)); }

} // namespace Zentara::Utils
