#include <CLI/CLI.hpp>

#include "app/ConsoleRun.h"

int main(int argc, char** argv) {
  hylden::RunOptions options;
  CLI::App app{
      "Runs a conducted RF immunity test from its files to saved run data.\n"
      "Ctrl-C presses Halt: RF goes off, and the recorded rows are saved.\n"
      "Exit status: 0 finished, 1 failed, 2 usage, 3 halted."};
  app.add_option("--equipment", options.EquipmentFile, "Equipment file of the station (.eqp)")->required();
  app.add_option("--test", options.TestFile, "Test definition (.tst)")->required();
  app.add_option("--output", options.OutputFile, "File for the run data (.run)")->required();
  auto* bench =
      app.add_option("--bench", options.BenchFile, "Drive the simulated bench, described by FILE if one is given")
          ->expected(0, 1)
          ->type_name("[FILE]");
  auto* virtualTime =
      app.add_flag("--virtual-time", options.VirtualTime, "Let waits pass at once (on the bench only)")->needs(bench);
  app.add_flag("--yes", options.Yes, "Answer the confirmations before RF is switched on");
  app.add_option("--seed", options.Seed, "Seed of the bench's reading noise")->needs(bench)->type_name("N");
  (void)virtualTime;

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error);
    return status == 0 ? 0 : static_cast<int>(hylden::ExitState::Usage);
  }
  options.UseBench = bench->count() > 0;
  return static_cast<int>(hylden::RunOnConsole(options));
}
