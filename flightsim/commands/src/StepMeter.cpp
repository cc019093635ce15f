// SPDX-License-Identifier: MIT
#include "StepMeter.h"

#include "program/Clock.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <limits>

namespace flightsim {

namespace {

constexpr double PARTS[] = {0.5, 0.95, 0.99};

[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}

double inMs(std::int64_t ns) { return double(ns) / double(program::NS_PER_MS); }

} // namespace

void StepMeter::sent(std::int64_t steady_ns, double step) {
    giveUp();
    m_step = step;
    m_sent_ns = steady_ns;
}

void StepMeter::giveUp() {
    if (m_sent_ns) m_missed++;
    m_sent_ns.reset();
}

void StepMeter::take(const UdpSendData& feedback, std::int64_t steady_ns) {
    if (!m_first_frame) {
        m_first_frame = feedback.frame;
        m_first_frame_ns = steady_ns;
    }
    m_last_frame = feedback.frame;
    m_last_frame_ns = steady_ns;
    const auto height = double(feedback.height_above_ground);
    if (m_sent_ns) {
        // What came in before the step left can't be its answer.
        if (steady_ns < *m_sent_ns || (height - m_height) / m_step < 0.5) return;
        m_delays_ns.push_back(steady_ns - *m_sent_ns);
        m_sent_ns.reset();
    }
    m_height = height;
}

double StepMeter::getFrame_ns() const {
    const std::int64_t frames = m_first_frame ? std::int64_t{m_last_frame} - *m_first_frame : 0;
    return frames > 0 ? double(m_last_frame_ns - m_first_frame_ns) / double(frames) : 0;
}

double DelayReport::percentile_ms(double part) const {
    const double steps = double(delays_ns.size()) + double(missed);
    const auto rank = static_cast<std::size_t>(std::max(1.0, std::ceil(part * steps)));
    return rank > delays_ns.size() ? std::numeric_limits<double>::infinity()
                                   : inMs(delays_ns[rank - 1]);
}

std::string DelayReport::text() const {
    const auto row = [&](const char* head, double unit_ms, int decimals, const char* unit) {
        std::string line = head;
        for (const double part : PARTS)
            line += format(" p%g %.*f,", part * 100, decimals, percentile_ms(part) / unit_ms);
        return line + format(" greatest %.*f%s\n", decimals, percentile_ms(1) / unit_ms, unit);
    };
    std::string text = row("delay    ", 1, 1, " ms");
    if (frame_ns > 0)
        text += row("frames   ", frame_ns / double(program::NS_PER_MS), 2,
                    format(" of %.2f ms", frame_ns / double(program::NS_PER_MS)).c_str());
    const auto steps = static_cast<long long>(delays_ns.size()) + missed;
    const auto within =
        std::ranges::count_if(delays_ns, [&](auto ns) { return inMs(ns) <= limit_ms; });
    return text + format("limit     %g ms: kept by %lld of %lld steps, %lld were not seen\n",
                         limit_ms, static_cast<long long>(within), steps,
                         static_cast<long long>(missed));
}

std::string DelayReport::plot() const {
    constexpr double LEFT = 70, TOP = 50, WIDTH = 620, HEIGHT = 300, BOTTOM = TOP + HEIGHT;
    const double steps = double(delays_ns.size()) + double(missed);
    const double longest = delays_ns.empty() ? 0 : inMs(delays_ns.back());
    // Divisions of 1, 2 or 5 times a power of ten: twelve at most.
    const double needed = 1.1 * std::max(longest, limit_ms);
    double division = std::pow(10, std::floor(std::log10(needed / 12)));
    for (const double factor : {2.0, 2.5, 2.0})
        if (division * 12 < needed) division *= factor;
    const int divisions = static_cast<int>(std::ceil(needed / division));
    const auto x = [&](double ms) { return LEFT + WIDTH * ms / (divisions * division); };
    const auto y = [&](double part) { return BOTTOM - HEIGHT * part; };
    std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 740 420\" "
                      "font-family=\"sans-serif\" "
                      "font-size=\"13\">\n<rect width=\"740\" height=\"420\" fill=\"white\"/>\n";
    svg +=
        format("<text x=\"%g\" y=\"28\" font-size=\"16\">From a step of the altitude to the height "
               "that reports it: %.0f steps</text>\n",
               LEFT, steps);
    for (int i = 0; i <= divisions; i++)
        svg += format("<path d=\"M%.1f %g v%g\" stroke=\"#ddd\"/><text x=\"%.1f\" y=\"%g\" "
                      "text-anchor=\"middle\">%g</text>\n",
                      x(i * division), TOP, HEIGHT, x(i * division), BOTTOM + 20, i * division);
    for (int i = 0; i <= 4; i++)
        svg += format("<path d=\"M%g %.1f h%g\" stroke=\"#ddd\"/><text x=\"%g\" y=\"%.1f\" "
                      "text-anchor=\"end\">%d %%</text>\n",
                      LEFT, y(i * 0.25), WIDTH, LEFT - 8, y(i * 0.25) + 4, i * 25);
    svg += format("<text x=\"%g\" y=\"%g\" text-anchor=\"middle\">delay, ms</text>\n",
                  LEFT + WIDTH / 2, BOTTOM + 48);
    svg += format("<path d=\"M%.1f %g v%g\" stroke=\"#c0392b\" stroke-dasharray=\"6 4\" "
                  "stroke-width=\"2\"/><text x=\"%.1f\" y=\"%g\" text-anchor=\"end\" "
                  "fill=\"#c0392b\">limit %g ms</text>\n",
                  x(limit_ms), TOP, HEIGHT, x(limit_ms) - 6, TOP + 16, limit_ms);
    svg += format("<path fill=\"none\" stroke=\"#1f6fb2\" stroke-width=\"2\" d=\"M%g %g", LEFT,
                  BOTTOM);
    for (std::size_t i = 0; i < delays_ns.size(); i++)
        svg += format(" H%.2f V%.2f", x(inMs(delays_ns[i])), y(double(i + 1) / steps));
    svg += "\"/>\n";
    double line = BOTTOM - 60; // of the texts, below the curve so that close ones can be read
    for (const double part : PARTS) {
        const double ms = percentile_ms(part);
        if (!std::isfinite(ms)) continue;
        svg += format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"4\" fill=\"#1f6fb2\"/><text x=\"%.1f\" "
                      "y=\"%.1f\" fill=\"#1f6fb2\">p%g %.1f ms</text>\n",
                      x(ms), y(part), std::min(x(longest) + 14, LEFT + WIDTH - 90), line,
                      part * 100, ms);
        line += 20;
    }
    return svg + "</svg>\n";
}

} // namespace flightsim
