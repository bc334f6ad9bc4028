// pelmora - the command-line companion of libPelmora64: replays recordings
// through the library, checks configurations and imports skeleton exports.
// The library prints its diagnostics on standard output; the tool points
// that at standard error and keeps the real standard output for its own
// lines, so `--format jsonl` output is JSON Lines and nothing else.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <ext/stdio_filebuf.h>

#include <fstream>
#include <iostream>
#include <stdexcept>

#include "tools/ConfigCheck.h"
#include "tools/EventPrinter.h"
#include "tools/Importers.h"
#include "tools/Recording.h"
#include "tools/Replay.h"
#include "tools/Report.h"
#include "tools/StdoutRedirect.h"

using namespace PelmoraTool;

namespace {

struct ReplayArguments {
    std::string config, recording, mode = "immediate", events = "finished", format = "text", report;
    ReplayOptions options;
};

struct ImportArguments {
    std::string format, input, output;
};

void AddReplay(CLI::App& app, ReplayArguments& args) {
    CLI::App* replay = app.add_subcommand("replay", "Feed a recording to the library and print gesture events");
    replay->add_option("CONFIG", args.config, "Configuration document (XML)")->required()->check(CLI::ExistingFile);
    replay->add_option("RECORDING", args.recording, "Recording in the native CSV format")->required()->check(CLI::ExistingFile);
    replay->add_option("--gestures", args.options.gestures, "Gestures to enable, A,B or all (default)")->delimiter(',');
    replay->add_option("--mode", args.mode, "immediate (default) or worker")->check(CLI::IsMember({"immediate", "worker"}));
    replay->add_flag("--realtime", args.options.realtime, "Pace frames by their recorded times");
    replay->add_option("--events", args.events, "finished (default) or all")->check(CLI::IsMember({"finished", "all"}));
    replay->add_option("--format", args.format, "text (default) or jsonl")->check(CLI::IsMember({"text", "jsonl"}));
    CLI::Option* report = replay->add_option("--report", args.report, "Write a visual report (HTML)");
    replay->add_option("--plot", args.options.plots, "Value to plot in the report; repeatable")
        ->needs(report)
        ->allow_extra_args(false);
}

void AddImport(CLI::App& app, ImportArguments& args) {
    CLI::App* import = app.add_subcommand("import", "Convert a skeleton export into the native recording format");
    import->add_option("FORMAT", args.format, "precog, timestamp-csv or kinect-text")->required()->check(CLI::IsMember(Importers::Formats()));
    import->add_option("INPUT", args.input, "File to convert")->required()->check(CLI::ExistingFile);
    import->add_option("OUTPUT", args.output, "Native recording to write")->required();
}

int RunReplay(ReplayArguments& args, std::ostream& out) {
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

int RunImport(const ImportArguments& args, std::ostream& out) {
    std::ifstream in(args.input, std::ios::binary);
    if (!in) throw std::runtime_error("cannot open " + args.input);
    Recording recording;
    try {
        recording = Importers::Import(args.format, in);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(args.input + ": " + error.what());
    }
    recording.WriteFile(args.output);
    out << args.output << ": " << recording.frames.size() << " frames, " << recording.joints.size() << " joints\n";
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"pelmora: replay recordings through libPelmora64, check configurations, import skeleton exports"};
    app.require_subcommand(1);
    ReplayArguments replayArgs;
    ImportArguments importArgs;
    std::string checkPath;
    AddReplay(app, replayArgs);
    AddImport(app, importArgs);
    app.add_subcommand("check", "Load and compile a configuration and report every problem")
        ->add_option("CONFIG", checkPath, "Configuration document (XML)")
        ->required();
    CLI11_PARSE(app, argc, argv);

    StdoutRedirect libraryToStderr(STDERR_FILENO);
    __gnu_cxx::stdio_filebuf<char> buffer(dup(libraryToStderr.OriginalFd()), std::ios::out);
    std::ostream out(&buffer);
    try {
        if (app.got_subcommand("replay")) return RunReplay(replayArgs, out);
        if (app.got_subcommand("import")) return RunImport(importArgs, out);
        return ConfigCheck::Run(checkPath, out);
    } catch (const std::exception& error) {
        out.flush();
        std::cerr << "pelmora: " << error.what() << '\n';
        return 1;
    }
}
