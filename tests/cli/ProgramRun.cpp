// ProgramRun: see ProgramRun.h. One thread forks, feeds two buffers from poll(2), and reaps.
#include "cli/ProgramRun.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "support/test.h"

namespace orrinvale::testing {
namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

struct Ends {
    Descriptor ours;
    Descriptor theirs;
};

Ends makePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) fail("pipe");
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Ends makeTerminal() {
    Descriptor ours(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!ours.isOpen() || ::grantpt(ours.get()) != 0 || ::unlockpt(ours.get()) != 0)
        fail("posix_openpt");
    Descriptor theirs(::open(::ptsname(ours.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
    const winsize size{24, 80, 0, 0};
    termios setting{};
    if (!theirs.isOpen() || ::ioctl(theirs.get(), TIOCSWINSZ, &size) != 0 ||
        ::tcgetattr(theirs.get(), &setting) != 0)
        fail("terminal");
    setting.c_oflag &= ~static_cast<tcflag_t>(OPOST);  // bytes as they were written
    if (::tcsetattr(theirs.get(), TCSANOW, &setting) != 0) fail("tcsetattr");
    return {std::move(ours), std::move(theirs)};
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> out;
    for (std::string& text : texts) out.push_back(text.data());
    out.push_back(nullptr);
    return out;
}

// Where sanitizers and coverage look for their settings.
std::vector<std::string> environmentOf(const ProgramRun& run) {
    std::vector<std::string> out = run.environment;
    for (const char* name :
         {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS", "LLVM_PROFILE_FILE"})
        if (const char* value = std::getenv(name)) out.push_back(std::string(name) + '=' + value);
    return out;
}

// Everything that the child needs, made before the fork, since the child may not allocate.
struct Plan {
    const char* folder;
    int program;
    int input;   // -1 for an empty one
    int output;  // -1 to close it
    int error;
    char* const* arguments;
    char* const* environment;
};

[[noreturn]] void becomeProgram(const ProgramRun& run, const Plan& plan) {
    constexpr int cannotStart = 125;
    const int input = plan.input >= 0 ? plan.input : ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    bool good = ::chdir(plan.folder) == 0 && ::dup2(input, STDIN_FILENO) == STDIN_FILENO;
    if (plan.output >= 0) good = good && ::dup2(plan.output, STDOUT_FILENO) == STDOUT_FILENO;
    else ::close(STDOUT_FILENO);
    good = good && ::dup2(plan.error, STDERR_FILENO) == STDERR_FILENO;
    for (const auto& [what, value] : run.limits) {
        const rlimit limit{value, value};
        good = good && ::setrlimit(static_cast<__rlimit_resource>(what), &limit) == 0;
    }
    if (run.user) good = good && ::setgid(*run.user) == 0 && ::setuid(*run.user) == 0;
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    // By descriptor: the user may not be allowed to walk to where the program lies.
    if (good) ::fexecve(plan.program, plan.arguments, plan.environment);
    ::_exit(cannotStart);
}

// False at the end of the stream.
bool readSome(int from, std::string& into) {
    std::array<char, 65536> block;
    const ssize_t count = ::read(from, block.data(), block.size());
    if (count > 0) into.append(block.data(), static_cast<std::size_t>(count));
    return count > 0 ||
           (count < 0 && errno == EINTR);  // a terminal whose other end is gone answers EIO
}

class Watch final {
public:
    Watch(const ProgramRun& run, int input) : m_run(run), m_input(input) {}

    // Reads until both streams of the child are at their end; sends signals and types meanwhile.
    void follow(pid_t child, int output, int error, ProgramRun::Result& result) {
        m_child = child;
        const auto end = Clock::now() + std::chrono::seconds(m_run.secondsToLive);
        std::array<pollfd, 2> streams{{{output, POLLIN, 0}, {error, POLLIN, 0}}};
        while (streams[0].fd >= 0 || streams[1].fd >= 0) {
            if (!result.late && Clock::now() > end) {
                result.late = true;
                ::kill(m_child, SIGKILL);
            }
            const bool signalsLeft = m_sent < m_run.signals.size();
            streams[0].events = m_run.holdOutput && signalsLeft && !result.late ? 0 : POLLIN;
            const bool isAnyLeft = signalsLeft || m_typed < m_run.typed.size();
            ::poll(streams.data(), streams.size(), isAnyLeft ? 5 : 200);
            for (std::size_t i = 0; i < streams.size(); ++i)
                if (streams[i].fd >= 0 &&
                    (streams[i].revents & (POLLIN | POLLHUP | POLLERR)) != 0 &&
                    !readSome(streams[i].fd, i == 0 ? result.output : result.error))
                    streams[i].fd = -1;
            sendSignals(result.error);
            type(result.error);
        }
    }

    // What comes before the program.
    void typeAhead() {
        while (m_typed < m_run.typed.size() && !m_run.typed[m_typed].condition) typeNext();
    }

private:
    void type(const std::string& error) {
        if (m_typed < m_run.typed.size() && m_run.typed[m_typed].condition(error)) typeNext();
    }
    void typeNext() {
        const std::string& text = m_run.typed[m_typed++].text;
        if (::write(m_input, text.data(), text.size()) < 0) fail("type");
    }
    void sendSignals(const std::string& error) {
        if (m_sent == m_run.signals.size() || !m_run.signals[m_sent].condition(error)) return;
        ::kill(m_child, m_run.signals[m_sent++].number);
    }

    const ProgramRun& m_run;
    pid_t m_child = -1;
    const int m_input;  // -1 where nobody types
    std::size_t m_sent = 0;
    std::size_t m_typed = 0;
};

}  // namespace

ProgramRun::Result ProgramRun::run() const {
    const std::optional<TestTree> fresh =
        folder.empty() ? std::optional<TestTree>(std::in_place) : std::nullopt;
    const std::string where = fresh ? fresh->path() : folder;
    Ends error = terminal ? makeTerminal() : makePipe();
    Ends output;
    Ends input;
    if (inputTerminal) input = makeTerminal();
    if (outputTerminal) output = makeTerminal();
    else if (outputFile.empty() && !closeOutput) output = makePipe();
    else if (!closeOutput)
        output.theirs = Descriptor(::open(outputFile.c_str(), O_WRONLY | O_CLOEXEC));
    const Descriptor file(::open(program.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen() || (!closeOutput && !output.theirs.isOpen())) fail(program);

    std::vector<std::string> texts = arguments;
    texts.insert(texts.begin(), program);
    std::vector<std::string> variables = environmentOf(*this);
    const std::vector<char*> argv = pointers(texts);
    const std::vector<char*> envp = pointers(variables);
    const Plan plan{where.c_str(),
                    file.get(),
                    inputTerminal ? input.theirs.get() : -1,
                    closeOutput ? -1 : output.theirs.get(),
                    error.theirs.get(),
                    argv.data(),
                    envp.data()};
    Watch watch(*this, inputTerminal ? input.ours.get() : -1);
    watch.typeAhead();
    const pid_t child = ::fork();
    if (child < 0) fail("fork");
    if (child == 0) becomeProgram(*this, plan);

    input.theirs = Descriptor();
    output.theirs = Descriptor();
    error.theirs = Descriptor();
    Result result;
    watch.follow(child, output.ours.get(), error.ours.get(), result);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0)
        if (errno != EINTR) fail("waitpid");
    if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    else result.signal = WTERMSIG(status);
    return result;
}

ProgramRun commandRun(std::string command, std::vector<std::string> arguments, std::string folder) {
    ProgramRun run;
    run.program = ORRINVALE_CLI_PATH;
    static const TestTree cache;  // and not that of the person who runs the tests
    if (command == "duplicates") run.environment = {"XDG_CACHE_HOME=" + cache.path()};
    run.arguments = std::move(arguments);
    run.arguments.insert(run.arguments.begin(), std::move(command));
    run.folder = std::move(folder);
    return run;
}

void expectStatuses(const std::string& command, const std::string& folder,
                    const std::vector<StatusCase>& cases, const std::vector<std::string>& forms) {
    for (const StatusCase& each : cases)
        for (const std::string& form : forms) {
            ProgramRun run = commandRun(command, each.arguments, folder);
            run.arguments.push_back(form);
            if (::geteuid() == 0) run.user = 65534;
            const auto result = run.run();
            SCOPED_TRACE(::testing::PrintToString(run.arguments) + result.error);
            EXPECT_EQ(result.status, each.status);
            EXPECT_EQ(result.output.empty(), each.status > 1);
            EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), each.lines);
            EXPECT_NE(result.error.find(each.says), std::string::npos);
            EXPECT_EQ(result.error.find("\xC2\x9B"), std::string::npos)
                << "a control byte reaches the terminal";
            if (form != "--json" || each.skipped.empty()) continue;
            std::vector<std::string> skipped;
            const auto document = nlohmann::json::parse(result.output);
            for (const auto& entry : document["skipped"])
                skipped.push_back(entry["path"].get<std::string>().substr(folder.size() + 1));
            EXPECT_EQ(skipped, each.skipped);
        }
    if (cases.front().status != 0) return;
    ProgramRun full = commandRun(command, cases.front().arguments, folder);
    full.outputFile = "/dev/full";
    EXPECT_EQ(full.run().status, 1);
}

}  // namespace orrinvale::testing
