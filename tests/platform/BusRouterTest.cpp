#include "platform/BusRouter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/AbsentGpib.h"
#include "support/ScriptedBus.h"

namespace hylden {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A scripted bus that notes lists as they come.
class ListingBus : public ScriptedBus {
 public:
  std::vector<std::vector<std::int16_t>> lists;
  std::string chatter;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override {
    lists.emplace_back(addresses.begin(), addresses.end());
    ScriptedBus::FindLstn(board, addresses, results);
  }
  std::string Way(int address) const override { return "own " + std::to_string(address); }
  std::string TakeChatter() override { return chatter; }
};

class BusRouterTest : public testing::Test {
 protected:
  BusRouterTest() { router_.RegisterGpibGlobalsForThread(cells_); }

  void Find(int address) {
    const std::int16_t list[] = {0, static_cast<std::int16_t>(address), gpib::kNoAddr};
    router_.FindLstn(0, list, found_);
  }
  bool Fails() const { return (cells_.status & gpib::kErr) != 0; }

  ListingBus board_, lan_;
  AbsentGpib absent_{"Not there."};
  GpibStatusCells cells_;
  std::int16_t found_[2] = {};
  BusRouter router_{board_, {{18, &lan_}, {20, &lan_}, {25, &absent_}}};
};

TEST_F(BusRouterTest, EachCallGoesTheWayOfItsAddress) {
  router_.Send(0, 13, "A", gpib::kDabEnd);
  router_.Send(0, 18, "B", gpib::kDabEnd);
  lan_.Answer(20, "7");
  char buffer[8];
  router_.Receive(0, 20, buffer, gpib::kStopEnd);
  EXPECT_EQ(cells_.longCount, 1);
  router_.ibtmo(0, gpib::kT30ms);
  EXPECT_FALSE(Fails());
  EXPECT_THAT(board_.Lines(), ElementsAre("> 13 A", "TMO 8"));
  EXPECT_THAT(lan_.Lines(), ElementsAre("> 18 B", "< 20 7", "TMO 8"));
  EXPECT_EQ(router_.Way(20), "own 20");
  board_.chatter = "a", lan_.chatter = "b";
  EXPECT_EQ(router_.TakeChatter(), "ab");
}

TEST_F(BusRouterTest, AListIsSplitAndTheBoardsOwnAddressStaysWithTheBoard) {
  Find(18);
  EXPECT_EQ(found_[0], 18);
  Find(13);
  const std::int16_t both[] = {13, 18, gpib::kNoAddr}, all[] = {25, 13, 18, gpib::kNoAddr};
  router_.FindLstn(0, all, found_);
  EXPECT_THAT(found_, ElementsAre(13, 18));
  EXPECT_EQ(cells_.longCount, 2);
  router_.EnableLocal(0, both);
  EXPECT_THAT(lan_.lists, ElementsAre(ElementsAre(18, -1), ElementsAre(18, -1)));
  EXPECT_THAT(board_.lists, ElementsAre(ElementsAre(0, 13, -1), ElementsAre(13, -1)));
  EXPECT_EQ(board_.Lines().back(), "LOCAL 13");
  EXPECT_EQ(lan_.Lines().back(), "LOCAL 18");
}

TEST_F(BusRouterTest, AWayIsClearedOnceByTheFirstCallThatNeedsIt) {
  router_.SendIFC(0);
  EXPECT_FALSE(Fails());
  Find(18);
  router_.Send(0, 20, "X", gpib::kDabEnd);
  EXPECT_THAT(lan_.Lines(), ElementsAre("IFC", "FIND 18", "> 20 X"));
  EXPECT_THAT(board_.Lines(), IsEmpty());
}

TEST_F(BusRouterTest, AClearThatFailedIsTheResultAndIsTriedAgainByTheNextFind) {
  lan_.FailLine("IFC", gpib::kEabo);
  lan_.advice = "Nobody answers.";
  router_.SendIFC(0);
  Find(18);
  EXPECT_TRUE(Fails());
  EXPECT_EQ(cells_.error, gpib::kEabo);
  EXPECT_EQ(router_.Advice(), "Nobody answers.");
  router_.Send(0, 18, "RF OFF", gpib::kDabEnd);  // no second wait for a connection
  Find(18);
  EXPECT_FALSE(Fails());
  EXPECT_THAT(lan_.Lines(), ElementsAre("IFC !6", "> 18 RF OFF", "IFC", "FIND 18"));
}

TEST_F(BusRouterTest, AWayThatIsNotThereHoldsUpNoOther) {
  router_.SendIFC(0);
  router_.ibtmo(0, gpib::kT10s);
  EXPECT_FALSE(Fails());
  Find(25);
  EXPECT_TRUE(Fails());
  EXPECT_EQ(router_.Advice(), "Not there.");
  Find(18);
  EXPECT_FALSE(Fails());
}

}  // namespace
}  // namespace hylden
