// The language server on the standard streams.

#include "editor/Serve.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <utility>

#include "base/DeviceOptions.h"
#include "base/ExitCodes.h"
#include "base/Print.h"
#include "editor/EditorJson.h"
#include "editor/Frames.h"
#include "editor/Server.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// Reads what has arrived, or waits for more. Returns false at the end of the input.
bool readInput(FrameReader* frames) {
    constexpr size_t kMostAtOnce = size_t{64} << 10;
    std::array<char, kMostAtOnce> bytes;
    ssize_t count = 0;
    do {
        count = read(STDIN_FILENO, bytes.data(), bytes.size());
    } while (count < 0 && errno == EINTR);
    frames->add({bytes.data(), count > 0 ? static_cast<size_t>(count) : 0});
    return count > 0;
}

bool hasMoreInput() {
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) > 0;
}

// Adds the messages that have arrived, and waits for the first. Returns what is wrong when no more
// can come; empty when nothing is.
std::string receive(FrameReader* frames, LanguageServer* server) {
    // So that an editor that never stops does not fill memory.
    constexpr size_t kMostWaiting = 256;
    for (size_t count = 0; count < kMostWaiting && server->countWaiting() < kMostWaiting;) {
        if (const std::optional<std::string> message = frames->next()) {
            server->add(*message);
            ++count;
            continue;
        }
        if (!frames->whyBroken().empty()) {
            return escaped(frames->whyBroken());
        }
        if (!hasMoreInput()) {
            if (server->isWaiting()) {
                break;
            }
            server->publish();
            if (std::fflush(stdout) != 0) {
                break;  // Nobody reads it.
            }
        }
        if (!readInput(frames)) {
            return server->isWaiting()     ? ""
                   : frames->isInMessage() ? "the input ends in the middle of a message"
                                           : "the input has ended, without \"exit\"";
        }
    }
    return std::string();
}

}  // namespace

int serveEditor(std::shared_ptr<const KnownSettings> known, const std::string& root) {
    std::signal(SIGPIPE, SIG_IGN);  // A closed pipe is reported.
    muteLog();
    LanguageServer server(std::move(known), root, [](const Json::Value& message) {
        writeOut(framed(writtenMessage(message)));
    });
    FrameReader frames;
    while (!server.isEnded()) {
        const std::string wrong = receive(&frames, &server);
        if (!wrong.empty()) {
            printError("{}", wrong);
            return kExitUsage;
        }
        if (server.isWaiting()) {
            server.handleNext();
            std::fflush(stdout);
        }
        if (std::ferror(stdout) != 0) {
            return kExitUsage;  // main() says why.
        }
    }
    return server.isShutDown() ? kExitOk : kExitFindings;
}

}  // namespace kc2::tool
