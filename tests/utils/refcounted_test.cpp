#include <zentara/utils/atomic_int.h>
#include <zentara/utils/refcounted.h>
#include <zentara/utils/smart_ptr.h>
#include <zentara/utils/weak_ptr.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace Zentara::Utils {
namespace {

class Counted : public Refcounted {
public:
    explicit Counted(AtomicInt& alive) : living(alive) { living.increment(); }
    Counted(const Counted& other) : Refcounted(other), living(other.living) { living.increment(); }
    Counted& operator=(const Counted& other) {
        Refcounted::operator=(other);
        return *this;
    }
    ~Counted() override { living.decrementAndTest(); }

private:
    AtomicInt& living;
};

class RefcountedTest : public testing::Test {
protected:
    AtomicInt living{0};
};

TEST(AtomicInt, CountsOnlyFromWhereItMay) {
    for (const int before : {0, 1, 5, -1, INT_MAX}) {
        AtomicInt up{before}, down{before};
        EXPECT_EQ(up.incrementIfNotZero(), before != 0) << before;
        EXPECT_EQ(up, before == 0 ? 0 : before == INT_MAX ? INT_MIN : before + 1) << "it wraps around";
        EXPECT_EQ(down.decrementIfOne(), before == 1) << before;
        EXPECT_EQ(down, before == 1 ? 0 : before);
    }
}

TEST_F(RefcountedTest, StartsWithOneReferenceAndDiesWithTheLast) {
    auto* object = new Counted(living);
    object->incref();
    EXPECT_FALSE(object->decrefIfLastRef());
    EXPECT_TRUE(object->tryIncref());
    object->decref();
    object->decref();
    EXPECT_EQ(living, 1);
    EXPECT_TRUE(object->decrefIfLastRef());
    EXPECT_EQ(living, 0);
}

TEST_F(RefcountedTest, CopyHasItsOwnReferenceAndNoWeakReferences) {
    const auto original = makeRefcounted<Counted>(living);
    const SmartPtr<Counted> second = original;
    const WeakPtr<Counted> weak(original);
    auto* copy = new Counted(*original);
    *copy = *original;
    copy->decref();
    EXPECT_EQ(living, 1);
    EXPECT_EQ(weak.lock(), original);
}

TEST_F(RefcountedTest, WeakReferenceEndsWithItsObject) {
    auto strong = makeRefcounted<Counted>(living);
    WeakPtr<Counted> weak(strong);
    const WeakPtr<Counted> copy = weak;
    const auto clone = weak.clone();
    const WeakPtr<Counted> nothing;
    EXPECT_EQ(copy.lock(), strong);
    EXPECT_FALSE(weak != copy);
    EXPECT_TRUE(weak != nothing);
    EXPECT_FALSE(clone->expired());

    const auto second = makeRefcounted<Counted>(living);
    WeakPtr<Counted> moved = weak;
    moved = WeakPtr<Counted>(second);
    strong.reset();
    EXPECT_EQ(living, 1);
    EXPECT_EQ(moved.lock(), second);
    EXPECT_TRUE(weak.expired());
    EXPECT_FALSE(copy.lock());
    EXPECT_EQ(clone->promote(), nullptr);
    EXPECT_FALSE(weak != nothing);
}

TEST_F(RefcountedTest, ADyingObjectIsNotHadBack) {
    struct Dying : Refcounted {
        explicit Dying(WeakPtr<Dying>& reference) : weak(reference) {}
        ~Dying() override {
            EXPECT_TRUE(weak.expired());
            EXPECT_FALSE(weak.lock());
            EXPECT_FALSE(tryIncref());
        }
        WeakPtr<Dying>& weak;
    };
    WeakPtr<Dying> weak;
    auto strong = makeRefcounted<Dying>(weak);
    weak = WeakPtr<Dying>(strong);
    EXPECT_FALSE(weak.expired());
    strong.reset();
    EXPECT_TRUE(weak.expired());
}

/// Threads promote, copy and drop weak references while the last strong one goes: an object is either had
/// alive or not at all.
TEST_F(RefcountedTest, PromotionAgainstTheLastDecref) {
    constexpr int rounds = 1000;
    constexpr int promoters = 3;
    // The standard barrier loses wake-ups in the cross compiler's runtime.
    std::atomic<int> arrivals{0};
    const auto arriveAndWait = [&] {
        const int step = arrivals++ / (promoters + 1);
        while (arrivals < (step + 1) * (promoters + 1))
            std::this_thread::yield();
    };
    WeakPtr<Counted> weak;
    std::atomic<int> dead{0};
    auto promote = [&] {
        for (int round = 0; round < rounds; ++round) {
            arriveAndWait();
            const WeakPtr<Counted> copy = weak;
            const auto had = copy.lock();
            dead += had && copy.expired() ? 1 : 0;
            arriveAndWait();
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < promoters; ++i)
        threads.emplace_back(promote);
    for (int round = 0; round < rounds; ++round) {
        auto strong = makeRefcounted<Counted>(living);
        weak = WeakPtr<Counted>(strong);
        arriveAndWait();
        strong.reset();
        arriveAndWait();
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(dead, 0);
    EXPECT_EQ(living, 0);
}

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

TEST(SmartPtr, ConvertsUpwardAndPassesTheReferenceOn) {
    auto derived = makeRefcounted<Other>();
    SmartPtr<Shy> base = derived;
    EXPECT_EQ(base, derived);
    EXPECT_EQ(derived->references, 2);
    base = std::move(derived);
    EXPECT_EQ(base->references, 1);
    Shy* const raw = base.detach();
    EXPECT_EQ(base, nullptr);
    const auto again = SmartPtr<Shy>::adopt(raw);
    EXPECT_EQ(again, raw);
    EXPECT_EQ(again->references, 1);
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
