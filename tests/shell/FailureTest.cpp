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

struct BoxesCase {
  std::vector<Failure> parts;
  std::vector<std::string> texts;
  MessageIcon lastIcon;
};

TEST(Failure, WhatFollowsAFailureOnTheBusJoinsItsBox) {
  const BoxesCase cases[] = {
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
  for (const BoxesCase& c : cases) {
    Failure failure;
    for (const Failure& part : c.parts) failure.Add(part);
    SCOPED_TRACE(testing::PrintToString(c.texts));
    EXPECT_EQ(Told(Done(Because(failure))), c.texts);
    EXPECT_EQ(failure.IsSilent(), c.texts.empty());
    if (!c.texts.empty()) {
      EXPECT_EQ(failure.Boxes().back().icon, c.lastIcon);
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
