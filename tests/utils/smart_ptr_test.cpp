#include <zentara/utils/smart_ptr.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace Zentara::Utils {
namespace {

/// Keeps its counting to itself and tells how often it was called.
class Shy : public Refcounted {
public:
    int references = 1;
    SmartPtr<Shy> next;

protected:
    void incref() override {
        ++references;
        Refcounted::incref();
    }
    void decref() override {
        --references;
        Refcounted::decref();
    }
};

class Other : public Shy {};

static_assert(sizeof(SmartPtr<Shy>) == sizeof(void*));
static_assert(!std::is_convertible_v<Shy*, SmartPtr<Shy>>,
              "a raw pointer does not turn into an owner by itself");
static_assert(!std::is_constructible_v<SmartPtr<Other>, SmartPtr<Shy>>, "no way down the hierarchy");

TEST(SmartPtr, CountsThroughTheBaseClass) {
    auto first = makeRefcounted<Shy>();
    EXPECT_EQ(first->references, 1) << "takes over what new gave";
    SmartPtr<Shy> second = first;
    const SmartPtr<const Shy> third(first.get());
    EXPECT_EQ(first->references, 3);
    SmartPtr<Shy> moved = std::move(second);
    EXPECT_EQ(first->references, 3);
    EXPECT_FALSE(second);
    moved = nullptr;
    EXPECT_EQ(first->references, 2);
    EXPECT_EQ(third->references, 2);
}

TEST(SmartPtr, DetachAndAdoptPassTheReferenceOn) {
    auto owner = makeRefcounted<Shy>();
    Shy* raw = owner.detach();
    EXPECT_EQ(owner, nullptr);
    EXPECT_EQ(raw->references, 1);
    const auto again = SmartPtr<Shy>::adopt(raw);
    EXPECT_EQ(again->references, 1);
    EXPECT_EQ(again, raw);
}

TEST(SmartPtr, DerivedHandlesConvert) {
    auto derived = makeRefcounted<Other>();
    SmartPtr<Shy> base = derived;
    EXPECT_EQ(base, derived);
    EXPECT_EQ(derived->references, 2);
    base = std::move(derived);
    EXPECT_EQ(base->references, 1);
}

TEST(SmartPtr, AssignmentSurvivesWhatItFrees) {
    auto head = makeRefcounted<Shy>();
    head->next = makeRefcounted<Shy>();
    head = head->next; // the right side belongs to the object that goes
    EXPECT_EQ(head->references, 1);
    auto& same = head;
    head = same;
    EXPECT_EQ(head->references, 1);
    head = std::move(same);
    EXPECT_TRUE(head);
}

} // namespace
} // namespace Zentara::Utils
