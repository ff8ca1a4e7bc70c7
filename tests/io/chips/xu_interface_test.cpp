#include <zentara/io/xu_interface.h>

#include <gmock/gmock.h>

#include <zentara/io/uvc_command_request.h>

#include "io/chips/wired_camera.h"

namespace Zentara::Test {

namespace {

using Plugin::InvalidOperationPluginException;

using Requests = std::vector<SmartPtr<xuRequest>>;

/// A chip that only takes down the arguments of the commands that it is given.
class ListeningChip : public IO::XUInterface {
public:
    using XUInterface::setup;
    void setup() override { ++setups; }
    void processCommand(SmartPtr<xuRequest> request) override {
        const unsigned a = dynamic_cast<UVCCommandRequest&>(*request).getA();
        done.push_back(a);
        if (onCommand)
            onCommand(a);
    }

    int setups = 0;
    std::vector<unsigned> done;
    std::function<void(unsigned)> onCommand;
};

SmartPtr<xuRequest> numbered(unsigned a) {
    return Utils::makeRefcounted<UVCCommandRequest>(IO::UVC_USB_BACKEND_REGISTER, a, 0U);
}

TEST(XUInterfaceTest, AListThatChangesWhileItRunsIsFollowed) {
    ListeningChip chip;
    Requests list{numbered(1), numbered(2), numbered(3)};
    chip.onCommand = [&](unsigned a) {
        if (a == 1) {
            list.insert(list.end(), 100, numbered(4)); // moves the list in memory
        } else if (a == 3) {
            list.resize(4);
        }
    };
    chip.processCommands(&list);
    EXPECT_THAT(chip.done, ElementsAre(1, 2, 3, 4));
    chip.processCommands(nullptr); // no list is an empty one
    // The request that is running lives, also when the list lets go of it.
    chip.done.clear();
    chip.onCommand = [&](unsigned) { list.clear(); };
    chip.processCommands(&list);
    EXPECT_THAT(chip.done, ElementsAre(1));
}

TEST(XUInterfaceTest, ANullElementOrAFailureStopsTheList) {
    ListeningChip chip;
    const Requests list{numbered(1), nullptr, numbered(2)};
    EXPECT_THAT(messageOf<ArgumentPluginException>([&] { chip.processCommands(&list); }),
                HasSubstr("request 1"));
    EXPECT_THAT(chip.done, ElementsAre(1));
    chip.onCommand = [](unsigned a) {
        if (a == 1)
            throw Plugin::IOPluginException("gone");
    };
    const Requests failing{numbered(0), numbered(1), numbered(2)};
    EXPECT_THROW(chip.processCommands(&failing), Plugin::IOPluginException);
    EXPECT_THAT(chip.done, ElementsAre(1, 0, 1));
}

TEST(XUInterfaceTest, WithoutAProxySelectingDoesNothingAndTransfersAreRefused) {
    ListeningChip chip;
    EXPECT_NO_THROW(chip.setup(::GUID{}));
    unsigned char byte = 0;
    EXPECT_THAT(messageOf<InvalidOperationPluginException>([&] { chip.send(1, 1, 1, &byte); }),
                HasSubstr("send"));
    EXPECT_THAT(messageOf<InvalidOperationPluginException>([&] { chip.recv(1, 1, 1, &byte, false); }),
                HasSubstr("recv"));
    chip.initialize(nullptr);
    EXPECT_EQ(chip.setups, 1);
    EXPECT_THROW(chip.send(1, 1, 1, &byte), InvalidOperationPluginException);
    IO::OV0570Impl unbound;
    EXPECT_THROW(unbound.setTOFControllerRegisterLocked(1, 1), InvalidOperationPluginException);
}

// Copies share one binding; whichever goes first, it is deleted once, by the object that made it.
TEST(XUInterfaceTest, CopiesAreViews) {
    ListeningChip first;
    ListeningChip other;
    ListeningChip viewOfOther(other);
    {
        ListeningChip copy(first);
        ListeningChip assigned;
        assigned = first;
        ListeningChip& itself = assigned;
        assigned = itself;
        first = copy;
        other = first; // and the view of its own binding lives on
    }
    first.dispose();
    unsigned char byte = 0;
    for (ListeningChip* chip : {&first, &other, &viewOfOther})
        EXPECT_THROW(chip->send(1, 1, 1, &byte), InvalidOperationPluginException);
}

} // namespace

} // namespace Zentara::Test
