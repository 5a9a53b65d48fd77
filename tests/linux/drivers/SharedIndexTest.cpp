// key_at_index in company: every order, up to a depth, in which two of our sources and a program that takes no lock can
// take their steps.

#include "linux/drivers/IndexedKeys.h"
#include "tests/support/FakeDriver.h"
#include "tests/support/Interleavings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace orv {

namespace {

const std::string folder = "/sys/devices/platform/applesmc.768";

// The value of the key at a position is that position.
FakeDriver::Key keyAt(std::size_t position)
{
    return {"TC" + std::to_string(position) + "P", "ui8 ", std::string(1, static_cast<char>(position))};
}

struct Findings {
    int right = 0;
    int wrong = 0;
    int lost = 0;
};

/// One of our sources, and what has become of its readings.
class Reader {
public:
    Reader(FakeDriver& driver, Findings& kept)
        : fake(driver)
        , findings(kept)
    {
    }

    void open() { source = IndexedKeys::open(fake, folder); }

    void refresh(const std::vector<std::size_t>& positions)
    {
        for (const auto position : positions)
            note(readAt(position), position);
        source->endTurn();
    }

    /// Before each of its calls, with the number of steps that the walker has taken.
    void observe(FakeDriver::Call call, std::size_t walked)
    {
        if (call == FakeDriver::Call::readIndex && fake.index != place)
            hasSeenCompany = true;
        if (call == FakeDriver::Call::write)
            walkedAtReadings = {walkedAtReadings[1], walked};
    }
    void noteWrite() { place = fake.index; }

    std::array<std::size_t, 2> walkedAtReadings{}; // at the beginnings of its last two
    bool hasSeenCompany = false; // by an index that was not where it had left it

private:
    SMCOutcome readAt(std::size_t position)
    {
        bytes = {};
        return source->readBytes(position, bytes);
    }

    void note(SMCOutcome outcome, std::size_t position)
    {
        if (outcome.status != 0)
            return void(++findings.lost);
        const bool isWrong = bytes[0] != position;
        ++(isWrong ? findings.wrong : findings.right);
        EXPECT_FALSE(isWrong && hasSeenCompany);
    }

    FakeDriver& fake;
    Findings& findings;
    std::unique_ptr<IndexedKeys> source;
    Hardware::Bytes bytes{};
    std::size_t place = 0;
};

thread_local Reader* active = nullptr; // whose step it is

class SharedIndexTest : public testing::Test {
protected:
    static constexpr std::size_t keyCount = 4;

    void setUp(Interleavings& runner)
    {
        std::vector<FakeDriver::Key> keys;
        for (std::size_t position = 0; position < keyCount; ++position)
            keys.push_back(keyAt(position));
        fake = std::make_unique<FakeDriver>();
        fake->addApplesmc(folder, std::move(keys));
        walked = 0;
        fake->beforeCall = [&](FakeDriver::Call call) {
            call == FakeDriver::Call::pause ? runner.wait() : runner.step();
            if (active)
                active->observe(call, walked);
        };
        fake->afterWrite = [] {
            if (active)
                active->noteWrite();
        };
    }

    /// A reader that has walked all keys alone.
    Reader opened()
    {
        Reader reader(*fake, findings);
        active = &reader;
        reader.open();
        active = nullptr;
        return reader;
    }

    /// Of a program that takes no lock and walks up over all keys, again and again. From the beginning of one reading
    /// of ours to the end of the next it makes less than a round.
    void walk() { fake->index = walked++ % keyCount; }
    bool mayWalk(std::initializer_list<const Reader*> readers) const
    {
        return walked < 9
            && std::ranges::all_of(
                readers, [&](const Reader* reader) { return walked - reader->walkedAtReadings[0] + 1 < keyCount; });
    }

    std::unique_ptr<FakeDriver> fake;
    std::size_t walked = 0;
    Findings findings;
};

std::function<void()> refreshing(Reader& reader, std::vector<std::size_t> positions)
{
    return [&reader, positions = std::move(positions)] {
        active = &reader;
        reader.refresh(positions);
        active = nullptr;
    };
}

TEST_F(SharedIndexTest, TwoOfUsStartWithoutLossInEveryOrder)
{
    Interleavings orders(10);
    while (orders.next()) {
        setUp(orders);
        Reader first(*fake, findings);
        Reader second(*fake, findings);
        const auto live = [](Reader& reader) {
            reader.open();
            reader.refresh({1, 2});
        };
        orders.run({[&] { live(first); }, [&] { live(second); }}, [] { return false; }, [] {});
        ASSERT_EQ(findings.wrong + findings.lost, 0) << "in order " << orders.orders;
    }
    EXPECT_GE(orders.orders, 1000u);
}

TEST_F(SharedIndexTest, TwoOfUsReadWithoutLossInEveryOrder)
{
    Interleavings orders(10);
    while (orders.next()) {
        setUp(orders);
        auto first = opened();
        auto second = opened();
        orders.run({refreshing(first, {1, 2}), refreshing(second, {2, 1})}, [] { return false; }, [] {});
        ASSERT_EQ(findings.wrong + findings.lost, 0) << "in order " << orders.orders;
    }
    EXPECT_GE(orders.orders, 1000u);
}

TEST_F(SharedIndexTest, BesideAProgramThatTakesNoLockNothingIsWrongOnceItWasNoticed)
{
    Interleavings orders(12);
    while (orders.next() && !HasFailure()) {
        setUp(orders);
        auto reader = opened();
        orders.run({refreshing(reader, {2, 3})}, [&] { return mayWalk({&reader}); }, [this] { walk(); });
    }
    EXPECT_GE(orders.orders, 3000u);
    EXPECT_LT(findings.wrong * 100, findings.right) << "what began too late to be noticed is rare";
}

TEST_F(SharedIndexTest, NorForTwoOfUs)
{
    Interleavings orders(6);
    while (orders.next() && !HasFailure()) {
        setUp(orders);
        auto first = opened();
        auto second = opened();
        walk(); // under way already
        orders.run(
            {refreshing(first, {2}), refreshing(second, {3})}, [&] { return mayWalk({&first, &second}); },
            [this] { walk(); });
    }
    EXPECT_GE(orders.orders, 100u);
}

} // namespace

} // namespace orv
