#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <string_view>

#include "app/ConsoleRun.h"
#include "measure/ReadFreq.h"
#include "platform/native/StandardStreams.h"
#include "shell/Version.h"

namespace {

using hylden::RunOptions;
using hylden::StepType;

std::string HasName(const std::string& name) {
  return name.empty() ? "the file has no name" : std::string();
}

/// @param files  what every job but a look at the bus needs
void AddJobs(CLI::App& app, RunOptions& options, const std::vector<CLI::Option*>& files) {
  CLI::Option_group* const jobs = app.add_option_group("Job", "What to run");
  jobs->add_option("--test", options.TestFile, "A test by its definition (.tst)");
  jobs->add_option("--calibrate", options.SetupFile, "A level calibration by its setup (.csu)")
      ->each([&options](const std::string&) { options.What = RunOptions::Job::Calibration; });
  jobs->add_flag_callback(
      "--cable-loss", [&options] { options.What = RunOptions::Job::CableLoss; },
      "A cable insertion-loss calibration: a direct pass, then an insert pass");
  jobs->add_flag_callback(
      "--bus-info",
      [&options, files] {
        options.What = RunOptions::Job::BusInfo;
        for (CLI::Option* const file : files) file->required(false);
      },
      "How the station's instruments are reached, or every address without --equipment, and who listens; "
      "records nothing");
  jobs->add_option("--recover", options.Journal,
                   "Save to --output what the journal of a run holds that was not ended in order; without NAME: list "
                   "the journals")
      ->expected(0, 1)
      ->type_name("[NAME]");
  jobs->add_option("--discard", options.Journal, "Remove the journal of a run that was not ended in order, unsaved")
      ->each([&options](const std::string&) { options.Discard = true; })
      ->check(HasName)
      ->type_name("NAME");
  jobs->add_option("--export", options.RunFile, "Write saved run data (.run) as a table to --csv")
      ->check(HasName)
      ->type_name("FILE");
  jobs->require_option(1);
}

void AddCableOptions(CLI::App& app, RunOptions& options) {
  CLI::Option_group* const group = app.add_option_group("Cable loss", "How a cable insertion-loss calibration is run");
  hylden::FormEntries& cable = options.Cable;
  CLI::Option* const job = app.get_option("--cable-loss");
  const auto add = [&](const char* name, std::string& entry, const char* unit, const char* help) {
    return group->add_option(name, entry, help)->needs(job)->type_name(unit);
  };
  job->needs(add("--start", cable["txtStartFreq"], "MHZ", "Lowest frequency"));
  job->needs(add("--stop", cable["txtStopFreq"], "MHZ", "Highest frequency"));
  auto* const logStep =
      add("--log-step", cable["txtLogStep"], "PERCENT", "Step as a part of the frequency (default 1)");
  auto* const linearStep =
      add("--linear-step", cable["txtLinearStep"], "MHZ", "Step that stays the same")->excludes(logStep);
  add("--list", cable["lblListFile"], "FILE", "Frequency list (.lst) in place of steps")->excludes(logStep, linearStep);
  add("--level", cable["txtLev"], "DBM", "Generator level (default -60)");
  add("--dwell", cable["txtDwell"], "SECONDS", "Wait before each reading (default 1)");
}

void AddBenchOptions(CLI::App& app, RunOptions& options) {
  auto* const bench =
      app.add_option("--bench", options.BenchFile, "Drive the simulated bench, described by FILE if one is given")
          ->excludes("--recover", "--discard", "--export")
          ->expected(0, 1)
          ->type_name("[FILE]");
  app.add_flag("--virtual-time", options.VirtualTime, "Let waits pass at once (on the bench only)")->needs(bench);
  app.add_option("--seed", options.Seed, "Seed of the bench's reading noise")
      ->needs(bench)
      ->check(CLI::NonNegativeNumber)
      ->type_name("N");
}

void AddExportOptions(CLI::App& app, RunOptions& options) {
  CLI::Option_group* const group = app.add_option_group("Export", "How run data are exported");
  CLI::Option* const job = app.get_option("--export");
  CLI::Option* const table =
      group->add_option("--csv", options.CsvFile, "File for the table")->needs(job)->check(HasName)->type_name("FILE");
  job->needs(table);
  group
      ->add_flag("--decimal-comma", options.DecimalComma,
                 "Decimal comma, and semicolons between the cells, in place of point and comma")
      ->needs(job);
}

void AddResumeOptions(CLI::App& app, RunOptions& options) {
  app.add_option("--resume", options.Resume,
                 "Continue the run of this journal (--recover lists them), with the options that it had, at its first "
                 "step without a complete row")
      ->excludes("--cable-loss", "--bus-info", "--recover", "--discard", "--export")
      ->check(HasName)
      ->type_name("NAME");
  app.add_flag("--keep-journal", options.KeepJournal,
               "Keep the journal of a test or a level calibration that ends early, so that --resume can continue it; "
               "--resume does so by itself")
      ->excludes("--recover", "--discard", "--export");
}

/// What works on files only, and needs no station: a recovery, an export.
RunOptions::Job JobOfFiles(int argc, char** argv) {
  const auto asks = [&](std::string_view option) {
    return std::any_of(argv, argv + argc, [&](std::string_view word) {
      return word.starts_with(option) && (word.size() == option.size() || word[option.size()] == '=');
    });
  };
  if (asks("--recover") || asks("--discard")) return RunOptions::Job::Recovery;
  return asks("--export") ? RunOptions::Job::Export : RunOptions::Job::Test;
}

/// What was given says how the cable is stepped through, and which bus is driven.
void TakeChoices(const CLI::App& app, RunOptions& options) {
  const StepType steps = app.count("--list") > 0          ? StepType::List
                         : app.count("--linear-step") > 0 ? StepType::Linear
                                                          : StepType::Log;
  options.Cable.Tick("optLinStep", steps == StepType::Linear);
  options.Cable.Tick("optLogStep", steps == StepType::Log);
  options.Cable.Tick("optListStep", steps == StepType::List);
  options.UseBench = app.count("--bench") > 0;
}

/// A word that is no option is what was typed wrongly, even where something else is missing for it.
int Refuse(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = app.remaining();
  const bool misspelt = !unknown.empty() && dynamic_cast<const CLI::RequiredError*>(&error);
  const int status = misspelt ? app.exit(CLI::ExtrasError({unknown.rbegin(), unknown.rend()})) : app.exit(error);
  return status == 0 ? 0 : static_cast<int>(hylden::ExitState::Usage);
}

int Main(int argc, char** argv) {
  RunOptions options;
  options.What = JobOfFiles(argc, argv);
  const bool runs = options.What == RunOptions::Job::Test;
  CLI::App app{
      "Runs a conducted RF immunity test or a calibration from its files to the file that it makes.\n"
      "Ctrl-C presses Halt: RF goes off, and what was recorded is saved.\n"
      "Exit status: 0 finished, 1 failed, 2 usage, 3 halted."};
  app.set_version_flag("--version", hylden::VersionTitle());
  auto* const equipment =
      app.add_option("--equipment", options.EquipmentFile,
                     "Equipment file of the station (.eqp); --bus-info, --recover, --discard and --export need none")
          ->required(runs);
  auto* const output =
      app.add_option(
             "--output", options.OutputFile,
             "File for what is recorded: run data (.run), a calibration record (.cal), an insertion loss (.los); "
             "--bus-info, --discard, --export and a list of journals need none")
          ->required(runs)
          ->check(HasName);
  AddJobs(app, options, {equipment, output});
  output->excludes("--discard", "--export");
  app.add_option("--trace", options.TraceFile, "File for all that goes over the bus, a line for each call")
      ->excludes("--recover", "--discard", "--export")
      ->check(HasName);
  app.add_option("--coupling-factor", options.CouplingFactor,
                 "Coupling factor for a setup with the user-defined method, in place of the setup's own; "
                 "needed where that is 0")
      ->needs("--calibrate")
      ->type_name("DB");
  AddResumeOptions(app, options);
  AddCableOptions(app, options);
  AddBenchOptions(app, options);
  AddExportOptions(app, options);
  app.add_flag(
      "--yes", options.Yes,
      "Answer the confirmations before RF is switched on, and whether to replace a file; on the bench also those "
      "of the cable's passes");

  // An unset variable of a script; some options would take it for none.
  if (std::any_of(argv + 1, argv + argc, [](std::string_view word) { return word.empty(); })) {
    std::fputs("An argument is empty.\n", stderr);
    return static_cast<int>(hylden::ExitState::Usage);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return Refuse(app, error);
  }
  TakeChoices(app, options);
  return static_cast<int>(hylden::RunOnConsole(options));
}

}  // namespace

int main(int argc, char** argv) {
  hylden::KeepStandardStreams();
  try {
    return Main(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "hylden-run: %s\n", error.what());
    return static_cast<int>(hylden::ExitState::Failed);
  }
}
