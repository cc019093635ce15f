// SPDX-License-Identifier: MIT
#include "ig/base/jLog.h"

#include "program/Clock.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>
#include <string>

namespace ig {

namespace {

jLog::Sink& currentSink() {
    static jLog::Sink sink;
    return sink;
}

LogLimiter::Clock& currentClock() {
    static LogLimiter::Clock clock;
    return clock;
}

spdlog::logger& console() {
    static auto logger = [] {
        auto made = std::make_shared<spdlog::logger>(
            "ig", std::make_shared<spdlog::sinks::stderr_color_sink_mt>());
        made->set_pattern("%^%l%$: %v");
        return made;
    }();
    return *logger;
}

[[gnu::format(printf, 2, 0)]] void write(LogLevel level, const char* format, va_list arguments) {
    char text[2048]; // longer lines are cut: a log line is not a place for data
    std::vsnprintf(text, sizeof text, format, arguments);
    if (currentSink()) {
        currentSink()(level, text);
        return;
    }
    const auto spdlog_level = level == LogLevel::error     ? spdlog::level::err
                              : level == LogLevel::warning ? spdlog::level::warn
                                                           : spdlog::level::info;
    console().log(spdlog_level, spdlog::string_view_t(text));
}

} // namespace

void jLog::message(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    write(LogLevel::message, format, arguments);
    va_end(arguments);
}

void jLog::warning(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    write(LogLevel::warning, format, arguments);
    va_end(arguments);
}

void jLog::error(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    write(LogLevel::error, format, arguments);
    va_end(arguments);
}

void jLog::setSink(Sink sink) { currentSink() = std::move(sink); }

void LogLimiter::setClock(Clock clock) { currentClock() = std::move(clock); }

bool LogLimiter::allow(int* held_back) {
    const double now = currentClock() ? currentClock()() : program::steadyNow();
    if (std::abs(now - m_last) < 1.0) { // one that lies ahead is another clock's
        m_held_back++;
        return false;
    }
    if (held_back) *held_back = m_held_back;
    m_last = now;
    m_held_back = 0;
    return true;
}

} // namespace ig
