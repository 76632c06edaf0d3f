// Measures the substitution of tokens in a large template: the template is read, the tokens are replaced, and
// the modified script is written. sed does the same nineteen replacements in the same run. Prints both times,
// their ratio, and the peak memory.
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <string>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include "platform/files.h"
#include "scripts/sql_script_mgr.h"
#include "support/temp_folder.h"

namespace {

constexpr std::size_t kTemplateSize = 100'000'000;

struct Token {
    const char* text;
    bool any_case;
    const char* value;
};

// In the order of the passes, with the values that FillSettings gives.
constexpr std::array kTokens = {
    Token{"###SERVER###", false, "NODE1\\KV_BATCH"},
    Token{"###server###", false, "node1\\kv_batch"},
    Token{"###USERID###", true, "UserOne"},
    Token{"###PASSWORD###", true, "PassOne"},
    Token{"###DATAPATH###", true, "C:"},
    Token{"###UNCREPLDATAPATH###", true, "\\\\Node1\\Repl"},
    Token{"###DOMAIN###", false, "PLANT"},
    Token{"###SERVERA###", false, "NODE1\\KV_BATCH"},
    Token{"###SERVERB###", false, "NODE2"},
    Token{"###servera###", false, "node1\\kv_batch"},
    Token{"###serverb###", false, "node2"},
    Token{"###USERIDA###", true, "UserOne"},
    Token{"###USERIDB###", true, "UserTwo"},
    Token{"###PASSWORDA###", true, "PassOne"},
    Token{"###PASSWORDB###", true, "PassTwo"},
    Token{"###DATAPATHA###", true, "C:\\"},
    Token{"###DATAPATHB###", true, "D:\\SQL"},
    Token{"###UNCREPLDATAPATHA###", true, "\\\\Node1\\Repl"},
    Token{"###UNCREPLDATAPATHB###", true, "\\\\Node2\\Repl"},
};

void FillSettings(kv::CSQLScriptMgr& scripts) {
    scripts.UseServerA(true);
    scripts.ServerA("Node1\\Kv_Batch");
    scripts.ServerB("Node2");
    scripts.UserA("UserOne");
    scripts.UserB("UserTwo");
    scripts.PasswordA("PassOne");
    scripts.PasswordB("PassTwo");
    scripts.SQLDataPathA("C:\\");
    scripts.SQLDataPathB("D:\\SQL\\");
    scripts.SQLUNCReplDataPathA("\\\\Node1\\Repl");
    scripts.SQLUNCReplDataPathB("\\\\Node2\\Repl");
    scripts.Domain("Plant");
}

/// Writes lines like those of an insert script; every second one has a token.
void WriteTemplate(const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary);
    std::mt19937 random(1);
    std::size_t size = 0;
    for (std::size_t i = 0; size < kTemplateSize; ++i) {
        const std::string middle =
            i % 2 == 0 ? kTokens[random() % kTokens.size()].text : "a plain value #" + std::to_string(i);
        const std::string line = "INSERT INTO [dbo].[LKConfig] ([ParameterName], [Value]) VALUES (N'Row" +
                                 std::to_string(i) + "', N'" + middle + "')\r\n";
        file << line;
        size += line.size();
    }
}

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        escaped += c == '\\' ? "\\\\" : std::string(1, c);
    }
    return escaped;
}

std::string SedScript() {
    std::string script;
    for (const Token& token : kTokens) {
        script +=
            std::string("s|") + token.text + "|" + Escaped(token.value) + (token.any_case ? "|gI\n" : "|g\n");
    }
    return script;
}

/// The template, the registry and sed's script, which all runs share.
class Bench {
  public:
    Bench() {
        WriteTemplate(Template());
        std::ofstream(folder_.Path() / "tokens.sed") << SedScript();
        std::ofstream(folder_.Path() / "registry.reg")
            << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVIK\\QUORLEN\\Log]\n@=\""
            << folder_.Path().string()
            << "\"\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Microsoft SQL Server\\KV_BATCH\\MSSQLServer\\"
               "CurrentVersion]\n\"CurrentVersion\"=\"14.0.1\"\n\n"
               "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Microsoft SQL Server\\140\\Tools\\ClientSetup]\n"
               "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Microsoft SQL Server\\80\\Tools\\ClientSetup]\n";
        ::setenv("KVLSQLDBMGR_REGISTRY", (folder_.Path() / "registry.reg").c_str(), 1);
        sed_ = "LC_ALL=C sed -f '" + (folder_.Path() / "tokens.sed").string() + "' '" + Template().string() +
               "' > '" + SedOutput().string() + "'";
    }

    std::filesystem::path Template() const { return folder_.Path() / "template.sql"; }
    std::filesystem::path SedOutput() const { return folder_.Path() / "by_sed.sql"; }
    static std::filesystem::path Modified() { return platform::ExecutableFolder() + "/Data/template.sql"; }

    bool RunSed() const { return std::system(sed_.c_str()) == 0; }
    bool RunProgram() const {
        kv::CSQLScriptMgr scripts;
        FillSettings(scripts);
        std::string path = Template().string();
        path.replace(path.rfind('/'), 1, "\\");
        return scripts.CreateModifiedScript(kv::sqlUserDefinedScript, path);
    }

    /// True if the modified script is sed's output with the line end that the program adds.
    bool ResultsAgree() const {
        return platform::ReadWholeFile(SedOutput().string()) + "\r\n" ==
               platform::ReadWholeFile(Modified().string());
    }

  private:
    support::TempFolder folder_;
    std::string sed_;
};

const Bench& TheBench() {
    static const Bench bench;
    return bench;
}

long PeakKilobytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

double best_program = 0;
double best_sed = 0;
double memory_ratio = 0;

template <class Run>
void Measure(benchmark::State& state, double& best, Run&& run) {
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        if (!run()) {
            state.SkipWithError("the run failed");
            return;
        }
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
        best = best == 0 || seconds < best ? seconds : best;
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kTemplateSize));
}

void Program(benchmark::State& state) {
    Measure(state, best_program, [] { return TheBench().RunProgram(); });
    memory_ratio = static_cast<double>(PeakKilobytes()) * 1024.0 /
                   static_cast<double>(std::filesystem::file_size(TheBench().Template()));
}

void Sed(benchmark::State& state) {
    Measure(state, best_sed, [] { return TheBench().RunSed(); });
}

BENCHMARK(Program)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(Sed)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    if (!TheBench().ResultsAgree()) {
        std::cerr << "the program's result differs from sed's\n";
        return 1;
    }
    std::printf("substitution of %.0f MB: program %.3f s, sed %.3f s, ratio %.1f (wanted: 5 or more)\n",
                static_cast<double>(kTemplateSize) / 1e6, best_program, best_sed, best_sed / best_program);
    std::printf("peak memory of the program: %.2f times the file (wanted: 3 or less)\n", memory_ratio);
    std::filesystem::remove(Bench::Modified());
    return 0;
}
