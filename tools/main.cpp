// pelmora - the command-line companion of libPelmora64: replays recordings
// through the library, scores gestures on labelled recordings and fits their
// constants to them, checks configurations and imports skeleton exports.
// The library prints its diagnostics on standard output; the tool points
// that at standard error and keeps the real standard output for its own
// lines, so `--format jsonl` output is JSON Lines and nothing else.
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <ext/stdio_filebuf.h>

#include <iostream>
#include <set>
#include <stdexcept>

#include "tools/ConfigCheck.h"
#include "tools/Evaluate.h"
#include "tools/EventPrinter.h"
#include "tools/Importers.h"
#include "tools/Replay.h"
#include "tools/Report.h"
#include "tools/StdoutRedirect.h"
#include "tools/Tune.h"

using namespace PelmoraTool;

namespace {

struct ReplayArguments {
    std::string config, recording, mode = "immediate", events = "finished", format = "text", report;
    ReplayOptions options;
};

struct EvaluateArguments {
    std::string labels = "runs", window = "1000", format = "text";
    EvaluateOptions options;
};

struct TuneArguments {
    EvaluateArguments data;
    std::string bounds = "0.5:2", loso = "yes";
    TuneOptions options;
};

struct ImportArguments {
    std::string format, input, output;
};

CLI::Validator NonEmpty() {
    return CLI::Validator([](const std::string& text) { return text.empty() ? std::string("the path is empty") : std::string(); },
                          "");
}

void AddReplay(CLI::App& app, ReplayArguments& args) {
    CLI::App* replay = app.add_subcommand("replay", "Feed a recording to the library and print gesture events");
    replay->add_option("CONFIG", args.config, "Configuration document (XML)")->required()->check(CLI::ExistingFile);
    replay->add_option("RECORDING", args.recording, "Recording in the native CSV format")->required()->check(CLI::ExistingFile);
    replay->add_option("--gestures", args.options.gestures, "Gestures to enable, A,B or all (default)")->delimiter(',');
    replay->add_option("--mode", args.mode, "immediate (default) or worker")->check(CLI::IsMember({"immediate", "worker"}));
    replay->add_flag("--realtime", args.options.realtime, "Pace frames by their recorded times");
    replay->add_option("--events", args.events, "finished (default) or all")->check(CLI::IsMember({"finished", "all"}));
    replay->add_option("--format", args.format, "text (default) or jsonl")->check(CLI::IsMember({"text", "jsonl"}));
    CLI::Option* report = replay->add_option("--report", args.report, "Write a visual report (HTML)")->check(NonEmpty());
    replay->add_option("--plot", args.options.plots, "Value to plot in the report; repeatable")
        ->needs(report)
        ->allow_extra_args(false);
}

// The options of the commands that score labelled recordings.
void AddLabelledData(CLI::App* evaluate, EvaluateArguments& args) {
    evaluate->add_option("CONFIG", args.options.config, "Configuration document (XML)")->required()->check(CLI::ExistingFile);
    evaluate->add_option("DATA", args.options.data, "Recordings, or folders of them")->required()->check(CLI::ExistingPath);
    evaluate->add_option("--map", args.options.map, "Label map: LABEL GESTURE|A|B|none|- per line")->required()->check(CLI::ExistingFile);
    evaluate->add_option("--labels", args.labels, "runs (default), points or file")->check(CLI::IsMember({"runs", "points", "file"}));
    evaluate->add_option("--manifest", args.options.manifest, "Tab-separated file, subject[, label] per recording")->check(CLI::ExistingFile);
    evaluate->add_option("--window", args.window, "Matching window in ms: MS or BEFORE:AFTER (default 1000)");
    evaluate->add_option("--jobs", args.options.jobs, "Worker processes (default: one per core)");
    evaluate->add_option("--format", args.format, "text (default) or json")->check(CLI::IsMember({"text", "json"}));
}

void AddEvaluate(CLI::App& app, EvaluateArguments& args) {
    AddLabelledData(app.add_subcommand("evaluate", "Score a configuration's gestures on labelled recordings"), args);
}

void AddTune(CLI::App& app, TuneArguments& args) {
    CLI::App* tune = app.add_subcommand("tune", "Fit gestures' constants to labelled recordings");
    AddLabelledData(tune, args.data);
    tune->add_option("--gestures", args.options.gestures, "Gestures to tune, A,B (in this order)")->required()->delimiter(',');
    tune->add_option("--values", args.options.values, "Declared values to tune with the gesture that reads them, A,B")->delimiter(',');
    tune->add_option("--bounds", args.bounds, "Search each constant within LOW:HIGH times its value (default 0.5:2)");
    tune->add_option("--range", args.options.ranges, "ROW:ATTRIBUTE=MIN:MAX for one constant; repeatable")->allow_extra_args(false);
    tune->add_option("--passes", args.options.passes, "Most replays of the data per gesture (default 8)")->check(CLI::PositiveNumber);
    tune->add_option("--loso", args.loso, "Leave-one-subject-out figures: yes (default), no or only")
        ->check(CLI::IsMember({"yes", "no", "only"}));
    tune->add_flag("--mirror", args.options.mirror, "Tie each gesture to its mirror twin (Right and Left swapped) and fit both as one");
    tune->add_option("--output", args.options.output, "Write the tuned configuration here")->check(NonEmpty());
}

void AddImport(CLI::App& app, ImportArguments& args) {
    CLI::App* import = app.add_subcommand("import", "Convert a skeleton export into the native recording format");
    import->add_option("FORMAT", args.format, "precog, timestamp-csv, kinect-text, mediapipe-jsonl, azure-kinect-json or ntu-skeleton")->required()->check(CLI::IsMember(Importers::Formats()));
    import->add_option("INPUT", args.input, "File to convert")->required()->check(CLI::ExistingFile);
    import->add_option("OUTPUT", args.output, "Native recording to write")->required();
}

bool SameFile(const std::string& a, const std::string& b) {
    struct stat first, second;
    return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

// What the replay can tell before it starts, so that a long replay does not
// end in an error it could have given at once.
void CheckReplayArguments(const ReplayArguments& args) {
    std::set<std::string> named;
    for (const std::string& gesture : args.options.gestures) {
        if (!named.insert(gesture).second) throw std::runtime_error("--gestures names \"" + gesture + "\" twice");
    }
    if (args.report.empty()) return;
    for (const std::string& input : {args.config, args.recording}) {
        if (SameFile(args.report, input))
            throw std::runtime_error("--report " + args.report + " would overwrite the input " + input);
    }
    Report::CheckWritable(args.report);
}

int RunReplay(ReplayArguments& args, std::ostream& out) {
    CheckReplayArguments(args);
    EventPrinter printer(out, args.format == "jsonl", args.events == "all");
    args.options.worker = args.mode == "worker";
    args.options.keepTimeline = !args.report.empty();
    Replay replay(args.recording, args.options, [&](const GestureEvent& event) { printer.Print(event); });
    Timeline timeline = replay.Run(args.config);
    if (args.report.empty()) return 0;
    timeline.recording = args.recording;
    Report::WriteFile(timeline, args.report);
    return 0;
}

EvaluateOptions& LabelledDataOptions(EvaluateArguments& args) {
    args.options.form = args.labels == "points" ? LabelForm::Points : args.labels == "file" ? LabelForm::File : LabelForm::Runs;
    args.options.window = Evaluate::ParseWindow(args.window);
    args.options.json = args.format == "json";
    return args.options;
}

int RunEvaluate(EvaluateArguments& args, std::ostream& out) { return Evaluate::Run(LabelledDataOptions(args), out); }

int RunTune(TuneArguments& args, std::ostream& out) {
    args.options.data = LabelledDataOptions(args.data);
    Tune::ParseBounds(args.bounds, args.options);
    args.options.loso = args.loso == "no" ? LosoMode::No : args.loso == "only" ? LosoMode::Only : LosoMode::Yes;
    return Tune::Run(args.options, out);
}

int RunImport(const ImportArguments& args, std::ostream& out) {
    const ImportCounts counts = Importers::ImportFile(args.format, args.input, args.output);
    out << args.output << ": " << counts.frames << " frames, " << counts.joints << " joints\n";
    return 0;
}

// "replay, import or check".
std::string CommandNames(const CLI::App& app) {
    const std::vector<const CLI::App*> commands = app.get_subcommands([](const CLI::App*) { return true; });
    std::string names;
    for (size_t k = 0; k < commands.size(); ++k)
        names += (k == 0 ? "" : k + 1 == commands.size() ? " or " : ", ") + commands[k]->get_name();
    return names;
}

// CLI11 reads an unknown first word, or none, as a missing subcommand.
std::string UsageError(const CLI::App& app, const CLI::ParseError& error) {
    if (!app.get_subcommands().empty()) return error.what();
    const std::vector<std::string> rest = app.remaining();
    if (rest.empty()) return "a command is required: " + CommandNames(app);
    const std::string what = rest.front().rfind('-', 0) == 0 ? "option" : "command";
    return "unknown " + what + " \"" + rest.front() + "\"; the commands are " + CommandNames(app);
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"pelmora: replay recordings through libPelmora64, check configurations, import skeleton exports"};
    app.require_subcommand(1);
    ReplayArguments replayArgs;
    EvaluateArguments evaluateArgs;
    TuneArguments tuneArgs;
    ImportArguments importArgs;
    std::string checkPath;
    AddReplay(app, replayArgs);
    AddEvaluate(app, evaluateArgs);
    AddTune(app, tuneArgs);
    AddImport(app, importArgs);
    app.add_subcommand("check", "Load and compile a configuration and report every problem")
        ->add_option("CONFIG", checkPath, "Configuration document (XML)")
        ->required();
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        std::cerr << "pelmora: " << UsageError(app, error) << " (pelmora --help tells more)\n";
        return error.get_exit_code();
    }

    StdoutRedirect libraryToStderr(STDERR_FILENO);
    __gnu_cxx::stdio_filebuf<char> buffer(dup(libraryToStderr.OriginalFd()), std::ios::out);
    std::ostream out(&buffer);
    try {
        if (app.got_subcommand("replay")) return RunReplay(replayArgs, out);
        if (app.got_subcommand("import")) return RunImport(importArgs, out);
        if (app.got_subcommand("evaluate")) return RunEvaluate(evaluateArgs, out);
        if (app.got_subcommand("tune")) return RunTune(tuneArgs, out);
        return ConfigCheck::Run(checkPath, out);
    } catch (const std::exception& error) {
        out.flush();
        std::cerr << "pelmora: " << error.what() << '\n';
        return 1;
    }
}
