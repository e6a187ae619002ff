// SPDX-License-Identifier: GPL-3.0-or-later
#include "Scratch.h"

#include "host/HandOver.h"
#include "host/HandOverServer.h"

#include <gtest/gtest.h>

#include <QEventLoop>

#include <atomic>
#include <fstream>
#include <future>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace ek {
namespace {

using Paths = std::vector<std::filesystem::path>;

const Paths AwkwardNames = {"/a b.wav",      "/\"quoted\".wav", "/line\nbreak.wav",
                            "/\xff\xfe.wav", "/\xc3\xa4.wav",   "/open"};

TEST(HandOverTest, EveryFileNamePassesUnchanged)
{
    EXPECT_EQ(DecodeHandOver(EncodeHandOver(AwkwardNames)), AwkwardNames);
    EXPECT_EQ(DecodeHandOver(EncodeHandOver({})), Paths());
}

TEST(HandOverTest, AMessageThatIsCutOffOrForeignOpensNothing)
{
    const std::string whole = EncodeHandOver({"/first.wav", "/second.wav"});
    for (size_t length = 0; length < whole.size(); ++length) {
        const auto files = DecodeHandOver(std::string_view(whole).substr(0, length));
        const bool endsWithAField = length == 5 || length == 16;
        EXPECT_EQ(files.has_value(), endsWithAField) << length;
    }
    using namespace std::string_view_literals;
    EXPECT_EQ(DecodeHandOver("close\0/a.wav\0"sv), std::nullopt);
    EXPECT_EQ(DecodeHandOver("open\0relative.wav\0"sv), std::nullopt);
    EXPECT_EQ(DecodeHandOver("open\0\0"sv), std::nullopt);
    EXPECT_EQ(DecodeHandOver("\0"sv), std::nullopt);
}

void Answer(int connection)
{
    char buffer[256];
    pollfd wait{.fd = connection, .events = POLLIN, .revents = 0};
    do {
        poll(&wait, 1, -1);
    } while (recv(connection, buffer, sizeof(buffer), 0) > 0);
    EXPECT_EQ(send(connection, "k", 1, MSG_NOSIGNAL), 1);
    close(connection);
}

/// Answers senders until told to stop, as a running editor does.
void AnswerUntil(const HandOverListener& listener, const std::atomic<bool>& stop)
{
    while (!stop) {
        pollfd wait{.fd = listener.Descriptor(), .events = POLLIN, .revents = 0};
        poll(&wait, 1, 10);
        if (const int connection = listener.Accept(); connection >= 0)
            Answer(connection);
    }
}

TEST(HandOverTest, OfSeveralEditorsStartedAtOnceExactlyOneIsTheFirst)
{
    const Scratch folder;
    std::ofstream(folder / "socket") << "what a crashed editor left";
    constexpr int Starts = 8;
    std::vector<HandOverListener> listeners(Starts);
    std::atomic<int> firsts = 0;
    std::atomic<int> decided = 0;
    std::atomic<bool> allDecided = false;
    {
        std::vector<std::jthread> threads;
        for (HandOverListener& listener : listeners) {
            threads.emplace_back([&] {
                const bool isFirst = JoinRunningEditor(folder / "socket", {"/a.wav"}, listener) == StartKind::First;
                firsts += isFirst;
                allDecided = ++decided == Starts || allDecided;
                if (isFirst)
                    AnswerUntil(listener, allDecided);
            });
        }
    }
    EXPECT_EQ(firsts, 1);
}

TEST(HandOverTest, NobodyListensAfterTheEditorHasGone)
{
    const Scratch folder;
    {
        HandOverListener listener;
        ASSERT_TRUE(listener.Listen(folder / "socket"));
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "socket"));
    EXPECT_EQ(SendHandOver(folder / "socket", {"/a.wav"}), HandOverResult::Nobody);
}

TEST(HandOverTest, ASocketThatCannotBeMadeIsAFirstStart)
{
    const Scratch folder;
    HandOverListener listener;
    EXPECT_EQ(JoinRunningEditor({}, {}, listener), StartKind::First);
    EXPECT_EQ(JoinRunningEditor(folder / "missing" / "socket", {}, listener), StartKind::First);
    EXPECT_EQ(JoinRunningEditor(folder / std::string(200, 'x'), {}, listener), StartKind::First);
    EXPECT_LT(listener.Descriptor(), 0);
}

TEST(HandOverTest, AnEditorThatDoesNotAnswerKeepsItsSocket)
{
    const Scratch folder;
    const auto socket = folder / "socket";
    HandOverListener running;
    ASSERT_TRUE(running.Listen(socket));
    HandOverListener second;
    auto start = std::async(std::launch::async, [&] { return JoinRunningEditor(socket, {"/a.wav"}, second); });
    pollfd wait{.fd = running.Descriptor(), .events = POLLIN, .revents = 0};
    poll(&wait, 1, -1);
    close(running.Accept());
    EXPECT_EQ(start.get(), StartKind::First);
    EXPECT_LT(second.Descriptor(), 0);

    auto next = std::async(std::launch::async, [&] { return SendHandOver(socket, {"/a.wav"}); });
    poll(&wait, 1, -1);
    Answer(running.Accept());
    EXPECT_EQ(next.get(), HandOverResult::Accepted);
}

TEST(HandOverTest, AnEditorThatGoesLeavesTheSocketOfAnother)
{
    const Scratch folder;
    HandOverListener other;
    {
        HandOverListener first;
        ASSERT_TRUE(first.Listen(folder / "socket"));
        ASSERT_TRUE(other.Listen(folder / "socket"));
    }
    EXPECT_TRUE(std::filesystem::exists(folder / "socket"));
}

TEST(HandOverTest, ARefusalIsAnsweredAndTheSenderKeepsItsFiles)
{
    const Scratch folder;
    HandOverListener listener;
    ASSERT_TRUE(listener.Listen(folder / "socket"));
    QEventLoop loop;
    int asked = 0;
    const HandOverServer server(listener, [&](const Paths&) {
        ++asked;
        return false;
    });
    std::atomic<HandOverResult> result = HandOverResult::Accepted;
    std::jthread sender([&] {
        result = SendHandOver(folder / "socket", {"/a.wav"});
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    sender.join();
    EXPECT_EQ(result, HandOverResult::NoAnswer);
    EXPECT_EQ(asked, 1);
}

TEST(HandOverTest, TheRunningEditorReceivesTheFilesAndAnswers)
{
    const Scratch folder;
    HandOverListener listener;
    ASSERT_TRUE(listener.Listen(folder / "socket"));
    Paths many = AwkwardNames;
    many.insert(many.end(), 1000, "/a rather long name that makes the message more than one piece.wav");
    Paths received;
    QEventLoop loop;
    const HandOverServer server(listener, [&](const Paths& files) {
        received = files;
        loop.quit();
        return true;
    });
    auto answered = std::async(std::launch::async, [&] { return SendHandOver(folder / "socket", many); });
    loop.exec();
    EXPECT_EQ(answered.get(), HandOverResult::Accepted);
    EXPECT_EQ(received, many);
}

} // namespace
} // namespace ek
