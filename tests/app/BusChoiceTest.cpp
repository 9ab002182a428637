#include "app/BusChoice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <sstream>

#include "bench/Bench.h"
#include "platform/GpibDriver.h"
#include "platform/VirtualTime.h"
#include "shell/INISettings.h"
#include "support/TempDir.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class BusChoiceTest : public testing::Test {
 protected:
  BusChoice Chosen(const std::string& settings) {
    directory_.Write("Hylden.ini", settings);
    INISettings ini(directory_.Path());
    return ChosenBus(ini);
  }
  /// Opens an address as a run does. @return what there is to tell when it can't be reached
  std::string Opening(Bus& bus, int address) {
    GpibDriver& driver = bus.Driver();
    const std::int16_t list[] = {0, static_cast<std::int16_t>(address), gpib::kNoAddr};
    std::int16_t found[2];
    driver.RegisterGpibGlobalsForThread(cells_);
    driver.SendIFC(0);
    if ((cells_.status & gpib::kErr) == 0) driver.FindLstn(0, list, found);
    return (cells_.status & gpib::kErr) != 0 ? "failed: " + driver.Advice() : "";
  }

  TempDir directory_;
  VirtualClock clock_;
  VirtualEventLoop events_{clock_};
  GpibStatusCells cells_;
};

TEST_F(BusChoiceTest, WaysAreReadByAddress) {
  const BusChoice choice = Chosen(
      "[Devices]\n18=socket:Gen.lab:5025\n 20 = socket:[fe80::1]:5025\n13=bench\n"
      "7=vxi11:meter.lab\n8=vxi11:meter.lab,gpib0,5\n");
  EXPECT_THAT(choice.Faults, IsEmpty());
  EXPECT_EQ(choice.Others.Is, BusWay::Kind::Native);
  EXPECT_EQ(choice.Devices.at(18).Place, "tcp:Gen.lab:5025");
  EXPECT_EQ(choice.Devices.at(20).Place, "tcp:[fe80::1]:5025");
  EXPECT_EQ(choice.Devices.at(13).Is, BusWay::Kind::Bench);
  EXPECT_EQ(choice.Devices.at(7).Place, "meter.lab,inst0");
  EXPECT_EQ(choice.Devices.at(8).Place, "meter.lab,gpib0,5");
  EXPECT_THAT(choice.Devices, SizeIs(5));
}

TEST_F(BusChoiceTest, WhatCantBeUnderstoodIsToldAndLeadsNowhere) {
  struct Case {
    const char *text, *why;
    int address;  // of the device that it takes away; -1: none
  };
  constexpr int kOthers = 1;
  const Case cases[] = {
      {"[Gpib]\nDriver=nativ", "section Gpib, Driver=nativ: the drivers are", kOthers},
      {"[Gpib]\nDriver=adapter", "section Gpib, Adapter=: ", kOthers},
      {"[Gpib]\nDriver=adapter\nAdapter=tcp:gen:x", "Adapter=tcp:gen:x: \"tcp:gen:x\" is no address", kOthers},
      {"[Gpib]\nDriver=adapter\nAdapter=tcp:a:1\n[Devices]\n18=socket:a:1", "another address has", 18},
      {"[Devices]\n31=bench", "section Devices, 31=bench: an address is a number from 0 to 30", -1},
      {"[Devices]\n18a=bench", "18a=bench: an address is", -1},
      {"[Devices]\n18=soket:gen:5025", "18=soket:gen:5025: a device is", 18},
      {"[Devices]\n18=", "18=: a device is", 18},
      {"[Devices]\n18=socket:gen", "18=socket:gen: a socket is", 18},
      {"[Devices]\n18=socket:gen:99999", "99999: a socket is", 18},
      {"[Devices]\n18=socket::5025", "18=socket::5025: a socket is", 18},
      {"[Devices]\n18=vxi11:", "18=vxi11:: it is vxi11:HOST", 18},
      {"[Devices]\n18=vxi11:gen,", "18=vxi11:gen,: it is vxi11:HOST", 18},
      {"[Devices]\n18=vxi11:gen\n20=vxi11:GEN,inst0", "20=vxi11:GEN,inst0: another address has", 20},
      {"[Devices]\n18=bench\n018=socket:gen:5025", "018=socket:gen:5025: the address is there twice", 18},
      {"[Devices]\n18=socket:gen:5025\n20=socket:GEN:5025", "20=socket:GEN:5025: another address has", 20},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const BusChoice choice = Chosen(c.text);
    EXPECT_THAT(choice.Faults, ElementsAre(HasSubstr(c.why)));
    EXPECT_THAT(choice.FaultText(), HasSubstr(c.why));
    if (c.address < 0) continue;
    Bus bus(choice, events_, clock_);
    EXPECT_THAT(Opening(bus, c.address), testing::AllOf(HasSubstr("failed: "), HasSubstr(c.why)));
  }
}

TEST_F(BusChoiceTest, EveryFormOfADevicesWayIsInThePapers) {
  const std::string forms = Chosen("[Devices]\n18=soket").FaultText();
  std::vector<std::string> found;  // such as "socket:HOST:PORT"
  std::istringstream words(forms);
  for (std::string word; words >> word;) {
    while (!word.empty() && !std::isupper(static_cast<unsigned char>(word.back()))) word.pop_back();
    if (const auto colon = word.find(':'); colon != std::string::npos && std::isupper(word[colon + 1]))
      found.push_back(word);
  }
  EXPECT_THAT(found, testing::Contains("socket:HOST:PORT")) << forms;
  for (const char* const page : {"buses.md", "formats/settings.md"}) {
    const std::string text = ReadTextFile(std::string(HYLDEN_SOURCE_DIR "/docs/") + page);
    for (const std::string& form : found) EXPECT_THAT(text, HasSubstr("`" + form + "`")) << page;
  }
}

TEST_F(BusChoiceTest, AnAdapterTakesTheLibrarysPlace) {
  const BusChoice choice = Chosen("[Gpib]\nDriver=Adapter\nAdapter=serial:/dev/nowhere,115200\n");
  EXPECT_EQ(choice.Others.Is, BusWay::Kind::Adapter);
  Bus bus(choice, events_, clock_);
  EXPECT_THAT(Opening(bus, 18), HasSubstr("/dev/nowhere"));
}

TEST_F(BusChoiceTest, TheNoticeNamesWhatIsSimulated) {
  struct Case {
    const char *text, *notice;
  };
  const Case cases[] = {
      {"", ""},
      {"[Gpib]\nDriver=Bench", kSimulatedBenchText},
      {"[Gpib]\nDriver=bench\n[Devices]\n18=soket", kSimulatedBenchText},
      {"[Gpib]\nDriver=bench\n[Devices]\n18=socket:gen:1\n20=socket:gen:2\n13=bench",
       "SIMULATED BENCH: all but addresses 18, 20, where an instrument is driven"},
      {"[Devices]\n13=bench\n18=socket:gen:1", "SIMULATED BENCH: address 13 only; all other instruments are driven"},
  };
  for (const Case& c : cases) EXPECT_EQ(Chosen(c.text).BenchNotice(), c.notice) << c.text;
}

TEST_F(BusChoiceTest, AStationWorksWithoutTheLibraryUntilAnAddressNeedsIt) {
  Bus bus(Chosen("[Gpib]\nLibrary=/nowhere/libgpib.so\n[Devices]\n13=bench\n"), events_, clock_);
  ASSERT_NE(bus.SimulatedBench(), nullptr);
  EXPECT_EQ(Opening(bus, 13), "");
  EXPECT_THAT(Opening(bus, 18), HasSubstr("failed: The GPIB library /nowhere/libgpib.so can't be loaded"));
}

}  // namespace
}  // namespace hylden
