#include "shell/Failure.h"

#include <gtest/gtest.h>

#include "support/Told.h"
#include "text/RuntimeError.h"

namespace hylden {
namespace {

const Failure kBus = Failure::OnBus("Error in reading meter. ", "\r\nibsta = &H8120");
const Failure kRefusal("Bad units");
const Failure kMeaning("Error initializing meter", MessageIcon::Critical);
const Failure kReport = Failure::Report(RuntimeError(ErrorNumber::FileNotFound), "SigGen.LoadFile", "a.sg");

TEST(Failure, WhatFollowsAFailureOnTheBusJoinsItsBox) {
  const std::tuple<std::vector<Failure>, std::vector<std::string>, MessageIcon> cases[] = {
      {{}, {}, {}},
      {{Failure("")}, {}, {}},
      {{kRefusal}, {"Bad units"}, MessageIcon::None},
      {{kBus}, {"Error in reading meter. \r\nibsta = &H8120"}, MessageIcon::Exclamation},
      {{kRefusal, kMeaning}, {"Bad units", "Error initializing meter"}, MessageIcon::Critical},
      {{kRefusal, kBus}, {"Bad units", "Error in reading meter. \r\nibsta = &H8120"}, MessageIcon::Exclamation},
      {{kBus, kBus, kRefusal},
       {"Error in reading meter. \r\nibsta = &H8120\r\nError in reading meter. \r\nBad units"},
       MessageIcon::Exclamation},
      {{kBus, kMeaning},
       {"Error in reading meter. \r\nibsta = &H8120\r\nError initializing meter"},
       MessageIcon::Critical},
      {{kBus, kReport, kRefusal},
       {"Error in reading meter. \r\nibsta = &H8120", "Error # 53\rFile not found\rSigGen.LoadFile\ra.sg", "Bad units"},
       MessageIcon::None},
  };
  for (const auto& [parts, texts, lastIcon] : cases) {
    Failure failure;
    for (const Failure& part : parts) failure.Add(part);
    SCOPED_TRACE(testing::PrintToString(texts));
    EXPECT_EQ(Told(Done(Because(failure))), texts);
    EXPECT_EQ(failure.IsSilent(), texts.empty());
    if (!texts.empty()) {
      EXPECT_EQ(failure.Boxes().back().icon, lastIcon);
    }
  }
}

TEST(Failure, BothAreDoneOrTellWhatFailedInOrder) {
  const Done done, first = Because("first"), second = Because("second");
  EXPECT_TRUE(Both(done, done));
  EXPECT_EQ(Told(Both(first, done)), std::vector<std::string>{"first"});
  EXPECT_EQ(Told(Both(done, second)), std::vector<std::string>{"second"});
  EXPECT_EQ(Told(Both(first, second)), (std::vector<std::string>{"first", "second"}));
}

}  // namespace
}  // namespace hylden
