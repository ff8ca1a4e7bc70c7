#pragma once

#include <chrono>

#include <zentara/utils/condition.h>
#include <zentara/utils/mutex.h>

namespace Zentara::Host {

/// Which stream has a node, and whether its reader is in it. The reader of a stream that was stopped may be there for a
/// while yet, or be about to go in, and would take the frames of the next one. Safe.
class NodeTurn final {
public:
    using Stream = const void*; ///< only told apart

    /// Waits until nobody reads any more for a stream that gave the node up; at once while another one has it.
    /// \return false when that takes longer
    [[nodiscard]] bool awaitReader(std::chrono::milliseconds limit);

    /// \return false when another stream has it
    bool take(Stream stream) noexcept;

    /// \return whether the stream had it
    bool giveUp(Stream stream) noexcept;

    /// A reader in the node.
    class Visit final {
    public:
        Visit(NodeTurn& of, Stream stream) noexcept;
        ~Visit();
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

        /// Whether it may go in: whether its stream still has the node.
        explicit operator bool() const noexcept { return isInside; }

    private:
        NodeTurn& turn;
        bool isInside;
    };

private:
    Utils::Threading::Mutex lock;
    Utils::Threading::Condition left{&lock};
    Stream owner ZENTARA_GUARDED_BY(lock) = nullptr;
    bool isOccupied ZENTARA_GUARDED_BY(lock) = false;
};

} // namespace Zentara::Host
