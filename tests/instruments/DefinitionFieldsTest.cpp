#include "instruments/DefinitionFields.h"

#include "support/FieldChanger.h"
#include "support/FormTable.h"
#include "support/TestStation.h"

namespace hylden {
namespace {

template <class Record>
std::optional<EntryFailure> TakenInto(const FormEntries& entries, Record& record) {
  return TakeEntries(entries, record);
}

/// Every field of the definition, changed in turn, passes the form and comes back.
template <class Record>
void ExpectEveryBoxComesBack(Record sample) {
  sample.EndOfString = 1;
  if constexpr (requires { sample.AmCapable; }) sample.AmCapable = sample.FmCapable = sample.PulseCapable = 0;
  if constexpr (requires { sample.SelectCh2; }) sample.Type = 0;
  for (int field = 0; field < FieldCount(sample); ++field) {
    SCOPED_TRACE(field);
    ExpectComesBack(WithChangedField(sample, field), TakenInto<Record>);
  }
}

TEST(DefinitionFields, EveryBoxOfTheThreeEditorsComesBack) {
  ExpectEveryBoxComesBack(SampleSigGen());
  ExpectEveryBoxComesBack(SampleMeter());
  ExpectEveryBoxComesBack(SamplePowerMeter());
}

TEST(DefinitionFields, NumbersAreWantedWhereNumbersAreKept) {
  const auto wanted = [](const auto& sample) {
    return ExpectNumbersWanted(sample, [&](const FormEntries& entries) {
      auto taken = sample;
      return TakeEntries(entries, taken);
    });
  };
  EXPECT_EQ(wanted(SampleSigGen()), 5u);
  EXPECT_EQ(wanted(SampleMeter()), 6u);
  EXPECT_EQ(wanted(SamplePowerMeter()), 5u);
}

TEST(DefinitionFields, RefuseWhatNoInstrumentCouldUse) {
  const Refusal<MeterDefinition> meter[] = {
      {nullptr, "txtAddress", "31"},     {nullptr, "txtAddress", "-1"},
      {nullptr, "txtAddress", "1.5"},    {nullptr, "txtAddress", "1e9"},
      {nullptr, "txtMaxFreq", "-1"},     {nullptr, "txtMinFreq", "-0.1"},
      {nullptr, "txtMinFreq", "1000.1"}, {nullptr, "txtMinLev", "120.1"},
      {nullptr, "txtMaxLev", "1e39"},    {[](MeterDefinition& d) { d.Units = 0; }, "txtMinLev", "-0.1"},
      {nullptr, "txtSetTime", "-0.1"},   {nullptr, "txtRead", "MA\u2126?", EntryFailure::Kind::Message},
  };
  ExpectRefused(meter, SampleMeter(), [](const FormEntries& entries) {
    MeterDefinition taken;
    return TakeEntries(entries, taken);
  });
  const Refusal<PowerMeterDefinition> powerMeter[] = {{nullptr, "txtBandSwitchFreq", "-1"},
                                                      {nullptr, "txtRead2", "\u03A9", EntryFailure::Kind::Message}};
  ExpectRefused(powerMeter, SamplePowerMeter(), [](const FormEntries& entries) {
    PowerMeterDefinition taken;
    return TakeEntries(entries, taken);
  });
  const Refusal<SigGenDefinition> sigGen[] = {{nullptr, "txtMinLev", "13.1"},
                                              {nullptr, "txtMaxFreq", "0"},
                                              {nullptr, "txtPulseModOn", "\u4E2D", EntryFailure::Kind::Message}};
  ExpectRefused(sigGen, SampleSigGen(), [](const FormEntries& entries) {
    SigGenDefinition taken;
    const auto failure = TakeEntries(entries, taken);
    // The lower limit is what is pointed out where it lies above the upper one.
    return failure && entries["txtMaxFreq"] == "0" ? EntryFailure{"txtMaxFreq", failure->Reason} : failure;
  });
}

TEST(DefinitionFields, MarkEveryEntryThatWouldBeRefused) {
  FormEntries entries = EntriesShowing(SampleSigGen());
  EXPECT_TRUE(RefusedWith(entries, SampleSigGen()).empty());
  entries["txtAddress"] = "x";
  entries["txtRfOn"] = "\u2126 ON";
  entries["txtMinLev"] = "20";
  entries["txtAmModOn"] = "\u00B5";  // which the bus has
  EXPECT_EQ(RefusedWith(entries, SampleSigGen()), (std::set<std::string>{"txtAddress", "txtMinLev", "txtRfOn"}));
}

TEST(DefinitionFields, ACapabilityThatIsTickedKeepsItsNumber) {
  SigGenDefinition d = SampleSigGen();
  d.AmCapable = -1;
  FormEntries entries = EntriesShowing(d);
  entries.Tick("chkFmCapable", false);
  d.PulseCapable = 0;
  entries.Tick("chkPulseCapable");
  EXPECT_FALSE(TakeEntries(entries, d));
  EXPECT_EQ(d.AmCapable, -1);
  EXPECT_EQ(d.FmCapable, 0);
  EXPECT_EQ(d.PulseCapable, 1);
}

TEST(DefinitionFields, AreTriedAsTheFileWillHoldThem) {
  MeterDefinition d = SampleMeter();
  FormEntries entries = EntriesShowing(d);
  entries["txtInit"] = "IP\r\nTS";
  entries["txtParse"] = "Mid(x, 5)\n";
  EXPECT_FALSE(TakeEntries(entries, d));
  EXPECT_EQ(d.InitString, "IP TS");
  EXPECT_EQ(d.ParseCmd, "Mid(x, 5) ");
}

TEST(DefinitionFields, ShowTheLevelsInTheChosenUnitsAndKeepThemInDbuv) {
  // 120 dBuV in the unit, another level in it, and what that is in dBuV.
  const std::tuple<std::string, const char*, const char*, float> cases[] = {{"optUnitVolts", "1.0", "0.1", 100},
                                                                            {"optUnitDbuv", "120.0", "99.5", 99.5F},
                                                                            {"optUnitMv", "1000.0", "10", 80},
                                                                            {"optUnitDbmv", "60.0", "0", 60},
                                                                            {"optUnitDbm", "13.01", "0", 106.9897F}};
  for (const auto& [chosen, shown, typed, kept] : cases) {
    SCOPED_TRACE(chosen);
    MeterDefinition d = SampleMeter();
    d.MaximumLevel = 120, d.MinimumLevel = 33.3333F;
    FormEntries entries = EntriesShowing(d);
    const FormEntries before = entries;
    for (const auto& row : cases) entries.Tick(std::get<0>(row), std::get<0>(row) == chosen);
    ChangeUnits(entries, d);
    EXPECT_EQ(entries["txtMaxLev"], shown);
    MeterDefinition taken = d;
    ASSERT_FALSE(TakeEntries(entries, taken));
    EXPECT_EQ(taken.MaximumLevel, 120) << "not typed, not converted";
    EXPECT_EQ(taken.MinimumLevel, 33.3333F);
    entries["txtMaxLev"] = typed;
    ASSERT_FALSE(TakeEntries(entries, taken));
    EXPECT_NEAR(taken.MaximumLevel, kept, 1e-4);

    entries["txtMaxLev"] = shown;
    for (const auto& [control, text] : before)
      if (control.starts_with("optUnit")) entries[control] = text;
    ChangeUnits(entries, d);
    EXPECT_TRUE(entries == before) << "there and back again";
  }
}

TEST(DefinitionFields, LevelsThatWereTypedComeThroughAChangeOfUnits) {
  MeterDefinition d = SampleMeter();
  FormEntries entries = EntriesShowing(d);
  entries["txtMaxLev"] = "110", entries["txtMinLev"] = "40";
  entries.Tick("optUnitDbuv", false), entries.Tick("optUnitDbmv");
  ChangeUnits(entries, d);
  EXPECT_EQ(entries["txtMaxLev"] + " " + entries["txtMinLev"], "50.0 -20.0");
}

TEST(DefinitionFields, LevelsThatAUnitCannotExpressStayAsTheyAre) {
  MeterDefinition d = SampleMeter();
  d.MaximumLevel = 9e30F, d.MinimumLevel = -400, d.Units = 0;
  MeterDefinition taken = d;
  EXPECT_FALSE(TakeEntries(EntriesShowing(d), taken));
  EXPECT_EQ(taken.MaximumLevel, 9e30F);
  EXPECT_EQ(taken.MinimumLevel, -400);
}

}  // namespace
}  // namespace hylden
