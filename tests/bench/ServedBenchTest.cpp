// What a client of the served bench gets back for its bytes, through the adapter and at an instrument's own socket.

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "bench/BareBench.h"
#include "bench/ServedAdapter.h"
#include "bench/ServedInstrument.h"

namespace hylden {
namespace {

/// The bare bench's meter answers 50.000 at once, each time it is asked; messages end with CR LF.
BenchEquipment AnsweringStation() {
  BenchEquipment station = SmallStation();
  station.Meter->Trigger = "";
  station.SigGen->EndOfString = station.Meter->EndOfString = 2;
  return station;
}

struct ServedBench : BareBench {
  ServedBench() : BareBench(AnsweringStation()) {}

  /// Everything that the client gets back for the bytes, however long it takes.
  std::string Ask(StreamSession& session, std::string_view bytes) {
    session.Take(bytes);
    std::string answer;
    while (const auto due = session.DueInMs()) {
      clock.Advance(*due);
      answer += session.Serve();
    }
    return answer;
  }
  /// How long it takes until the client gets that back.
  std::int64_t TimeFor(StreamSession& session, std::string_view bytes, const char* answer) {
    const std::int64_t before = clock.TickMs();
    EXPECT_EQ(Ask(session, bytes), answer);
    return clock.TickMs() - before;
  }
  const GeneratorState& Generator() const { return bench.State().Generator; }

  ServedBus bus{bench.Bus(), clock};
  ServedAdapter adapter{bus};
};

struct Dialog {
  const char* name;
  std::string sent, answered;
};

void PrintTo(const Dialog& dialog, std::ostream* out) {
  *out << dialog.name;
}

class AdapterDialog : public testing::TestWithParam<Dialog> {};

TEST_P(AdapterDialog, AnswersAsAnAdapterDoes) {
  ServedBench served;
  EXPECT_EQ(served.Ask(served.adapter, GetParam().sent), GetParam().answered);
}

INSTANTIATE_TEST_SUITE_P(
    Served, AdapterDialog,
    testing::Values(Dialog{"settings_as_switched_on",
                           "++mode\n++auto\n++addr\n++eoi\n++eos\n++eot_enable\n++eot_char\n++read_tmo_ms\n++savecfg\n",
                           "1\r\n0\r\n0\r\n1\r\n0\r\n0\r\n0\r\n1000\r\n0\r\n"},
                    Dialog{"a_setting_stays", "++addr 13\r++ADDR\r\n", "13\r\n"},
                    Dialog{"reset", "++addr 13\n++auto 1\n++rst\n++addr\n++auto\n", "0\r\n0\r\n"},
                    Dialog{"out_of_range", "++addr 31\n++eos 4\n++auto x\n++addr\n",
                           "Unrecognized command\r\nUnrecognized command\r\nUnrecognized command\r\n0\r\n"},
                    Dialog{"unknown", "++\n++bogus 1\n++read_\n",
                           "Unrecognized command\r\nUnrecognized command\r\nUnrecognized command\r\n"},
                    Dialog{"a_question_is_read", "++addr 13\nMK\n++read eoi\n", "50.000\r\n"},
                    Dialog{"nothing_unless_read", "++addr 13\nMK\n", ""},
                    Dialog{"read_after_every_message", "++addr 13\n++auto 1\nMK\n", "50.000\r\n"},
                    Dialog{"read_to_a_character", "++addr 13\nMK\n++read 46\n++read\n", "50.000\r\n"},
                    Dialog{"marked_end", "++addr 13\n++eot_enable 1\n++eot_char 42\nMK\n++read\n", "50.000\r\n*"},
                    Dialog{"nobody_there", "++addr 5\nMK\n++read eoi\n++ver 1\n",
                           "GPIB adapter of the simulated bench, version 1.0\r\n"},
                    Dialog{"wrong_end_of_string", "++addr 13\n++eos 3\nMK\n++read eoi\n", ""},
                    Dialog{"escaped_end_of_string", "++addr 13\n++eos 3\nMK\x1b\r\x1b\n\n++read eoi\n", "50.000\r\n"},
                    Dialog{"escaped_plus_goes_out", "++addr 13\n\x1b+\x1b+addr 5\n++addr\n", "13\r\n"},
                    Dialog{"device_clear", "++addr 13\nMK\n++clr\n++read eoi\n", ""},
                    Dialog{"device_mode_sends_nothing", "++addr 13\n++mode 0\nMK\n++mode 1\n++read eoi\n", ""},
                    Dialog{"serial_poll", "++spoll 13\n++addr 18\n++spoll\n++spoll 5\n++srq\n", "0\r\n0\r\n0\r\n"},
                    Dialog{"empty_lines", "\r\n\n\r++addr\r\n\r\n", "0\r\n"}),
    [](const auto& row) { return row.param.name; });

TEST(ServedAdapter, DrivesTheBench) {
  ServedBench served;
  EXPECT_EQ(served.Ask(served.adapter, "++addr 18\n++llo\nFR 30.0 MZ\nR1\n"), "");
  EXPECT_TRUE(served.Generator().RfOn);
  EXPECT_EQ(served.Generator().FreqMHz, 30);
  EXPECT_TRUE(served.bench.Bus().IsRemote(18));
  EXPECT_EQ(served.Ask(served.adapter, "++loc\n++ifc\n++trg\n"), "");
  EXPECT_FALSE(served.bench.Bus().IsRemote(18));
}

TEST(ServedAdapter, IsSilentForItsTimeLimitWhenNothingComes) {
  ServedBench served;
  EXPECT_EQ(served.TimeFor(served.adapter, "++addr 13\n++read_tmo_ms 300\n++read eoi\n++srq\n", "0\r\n"), 300);
  served.bench.Inject({FaultKind::Late, BenchRole::Meter, 1, 200});
  EXPECT_EQ(served.Ask(served.adapter, "MK\n++read eoi\n"), "50.000\r\n") << "late, within the limit";
  served.bench.Inject({FaultKind::Late, BenchRole::Meter, 1, 700});
  EXPECT_GE(served.TimeFor(served.adapter, "MK\n++read eoi\n++srq\n", "0\r\n"), 300);
  EXPECT_EQ(served.Ask(served.adapter, "++read_tmo_ms 1000\n++read eoi\n"), "50.000\r\n") << "it still waits";
}

TEST(ServedInstrument, TakesLinesWithAnyEndAndEndsItsAnswersWithLf) {
  ServedBench served;
  ServedInstrument meter(served.bus, 13), generator(served.bus, 18);
  for (const char* line : {"MK\n", "MK\r", "MK\r\n"}) EXPECT_EQ(served.Ask(meter, line), "50.000\r\n") << line;
  EXPECT_EQ(served.Ask(generator, "FR 30.0 MZ\nR1\n"), "");
  EXPECT_TRUE(served.Generator().RfOn);
  EXPECT_EQ(served.bench.Bus().UnknownCount(), 0);
  EXPECT_EQ(served.Ask(meter, "nonsense\nM"), "");
  EXPECT_EQ(served.Ask(meter, "K\n"), "50.000\r\n") << "a message may come in pieces";
}

TEST(ServedInstrument, AnAnswerWithoutAnEndGetsOne) {
  BenchEquipment station = AnsweringStation();
  station.Meter->EndOfString = 0;
  ServedBench served;
  served.bench.Equip(station);
  ServedInstrument meter(served.bus, 13);
  EXPECT_EQ(served.Ask(meter, "MK\r\n"), "50.000\n");
}

TEST(ServedInstrument, ALateAnswerIsLateAndALostOneHoldsNothingUp) {
  ServedBench served;
  ServedInstrument meter(served.bus, 13);
  served.bench.Inject({FaultKind::Late, BenchRole::Meter, 1, 700});
  EXPECT_GE(served.TimeFor(meter, "MK\n", "50.000\r\n"), 700);
  for (const FaultKind lost : {FaultKind::Fail, FaultKind::Silent}) {
    served.bench.Inject({lost, BenchRole::Meter, 1});
    EXPECT_LE(served.TimeFor(meter, "MK\nMK\n", "50.000\r\n"), 10);
  }
}

TEST(ServedSession, AMessageWithoutAnEndIsDroppedAndTheNextOneHeard) {
  ServedBench served;
  ServedInstrument meter(served.bus, 13);
  const std::string piece(4096, 'x');
  for (int n = 0; n < 256; ++n) {
    ASSERT_TRUE(meter.TakesMore());
    EXPECT_EQ(served.Ask(meter, piece), "");
  }
  EXPECT_EQ(served.Ask(meter, "x\nMK\n"), "50.000\r\n");
}

TEST(ServedSession, TakesNoMoreThanItCanKeep) {
  ServedBench served;
  ServedInstrument meter(served.bus, 13);
  while (meter.TakesMore()) meter.Take(std::string(1024, 'M') + '\n');
  EXPECT_EQ(served.Ask(meter, ""), "");
  EXPECT_TRUE(meter.TakesMore());
}

TEST(ServedSession, TheConnectionBreaksAtItsMessage) {
  using Kind = ConnectionBreak::Kind;
  struct Case {
    Kind kind;
    bool through, ended;
    std::string answer, next;
  };
  for (const Case& c : {Case{Kind::Close, false, true, "", ""}, Case{Kind::Hang, false, false, "", ""},
                        Case{Kind::Garble, true, false, "\xff\xff\xff\xff\xff\xff\r\n", "50.000\r\n"}}) {
    ServedBench served;
    ServedInstrument generator(served.bus, 18), meter(served.bus, 13);
    served.bus.Break({c.kind, 2});
    served.Ask(generator, "R1\n");
    EXPECT_EQ(served.Ask(generator, "R0\n"), "");
    EXPECT_EQ(served.Generator().RfOn, !c.through);
    EXPECT_EQ(generator.Ended(), c.ended);
    EXPECT_EQ(served.Ask(meter, "MK\n"), "50.000\r\n") << "another connection";
    served.bus.Break({c.kind, 4});
    EXPECT_EQ(served.Ask(meter, "MK\n"), c.answer);
    if (c.ended) continue;
    EXPECT_EQ(served.Ask(meter, "MK\n"), c.next);
  }
}

}  // namespace
}  // namespace hylden
