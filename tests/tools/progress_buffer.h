#pragma once

#include <deque>
#include <functional>
#include <sstream>
#include <string>

namespace Zentara::Tool {

/// What the tool shows of its progress; does things, each once and in order, when that says so.
class ProgressBuffer final : public std::stringbuf {
public:
    /// When the first camera has delivered so many frames.
    void atFrame(unsigned frames, std::function<void()> action) {
        steps.push_back({[frames](const std::string& shown) { return framesIn(shown) >= frames; }, action});
    }
    /// When these words have been shown.
    void after(const std::string& words, std::function<void()> action) {
        steps.push_back(
            {[words](const std::string& shown) { return shown.find(words) != std::string::npos; }, action});
    }

protected:
    int sync() override {
        while (!steps.empty() && steps.front().due(str())) {
            steps.front().action();
            steps.pop_front();
        }
        return std::stringbuf::sync();
    }

private:
    struct Step {
        std::function<bool(const std::string&)> due;
        std::function<void()> action;
    };

    static unsigned long framesIn(const std::string& shown) {
        const std::size_t digit = shown.find_first_of("0123456789", shown.rfind('\r'));
        const bool counts = digit != std::string::npos && digit > 0 && shown[digit - 1] == '\r';
        return counts ? std::stoul(shown.substr(digit)) : 0;
    }

    std::deque<Step> steps;
};

} // namespace Zentara::Tool
