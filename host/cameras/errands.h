#pragma once

#include <chrono>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <zentara/utils/mutex.h>

#include "host/cameras/hand.h"
#include "host/tell.h"

namespace Zentara::Host {

/// A hand with the limit of its calls, and the notes that come of them: those of a work are told by its caller, when the
/// work is over, so that nobody is told anything whom nobody called. Safe, but for the destructor.
class Errands final {
public:
    /// \param whose for notes: "LEFT SIM0570"
    Errands(std::string whose, std::chrono::milliseconds mostTime, Note told)
        : limit(mostTime), note(told), hand(std::make_shared<Hand>(std::move(whose), std::move(told))) {}
    Errands(const Errands&) = delete;
    Errands& operator=(const Errands&) = delete;
    ~Errands() = default;

    /// Does the work on the hand's thread; its steps are the ones that are told. The work must own all it touches.
    /// \param what for what throws or hangs outside of any step of the work
    template<typename Work>
    std::invoke_result_t<Work&> run(const std::string& what, Work work) const {
        const Teller afterwards(*this);
        try {
            return hand->call(limit, what, std::move(work));
        } catch (...) {
            rethrowAsFailure(what);
        }
    }

    /// Has it done without waiting for it. Where there is no memory for that, what the work owns goes on this thread.
    /// \param words gives what is done
    template<typename Words, typename Work>
    void leave(Words words, Work work) const noexcept {
        try {
            hand->leave(words(), std::move(work));
        } catch (const std::bad_alloc&) {
        }
    }

    /// What works tell their notes.
    [[nodiscard]] Note notes() const {
        return [kept = kept](const std::string& text) {
            Utils::Threading::AutoLock hold(kept->lock);
            kept->texts.push_back(text);
        };
    }

    const std::chrono::milliseconds limit;
    const Note note;                  ///< the host's
    const std::shared_ptr<Hand> hand; ///< shared with the streams

private:
    struct Kept {
        Utils::Threading::Mutex lock;
        /// In their order; taken when a work is over.
        std::vector<std::string> texts ZENTARA_GUARDED_BY(lock);
    };

    class Teller {
    public:
        explicit Teller(const Errands& whose) : errands(whose) {}
        ~Teller() {
            std::vector<std::string> texts;
            {
                Utils::Threading::AutoLock hold(errands.kept->lock);
                texts.swap(errands.kept->texts);
            }
            for (const std::string& text : texts)
                tell(errands.note, text);
        }
        Teller(const Teller&) = delete;
        Teller& operator=(const Teller&) = delete;

    private:
        const Errands& errands;
    };

    const std::shared_ptr<Kept> kept = std::make_shared<Kept>();
};

} // namespace Zentara::Host
