// The dialog and whoever shows it at two ends of a line: it is as if they were in one place, and nothing that
// the other end says or fails to say does more than cancel it.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <functional>
#include <random>
#include <sstream>

#include "platform/answered_dialogs.h"
#include "platform/remote/answering.h"
#include "platform/remote/asking.h"
#include "platform/remote/line.h"
#include "platform/remote/protocol.h"
#include "tests/support/dialog_session.h"

namespace {

using remote::Packet;
using user::Click;
using user::DoubleClick;
using user::Event;
using user::Key;
using user::MoveThumb;
using user::Press;
using Actions = std::vector<UserAction>;

// One of each kind of question.
const Actions kSession = {user::DragWindow(30, 20),
                          Press(kRadiusBarItem, kPageDown),
                          MoveThumb(kHorizontalBarItem, 140),
                          DoubleClick(kRadiusFieldItem),
                          Key('4'),
                          Key(kReturn)};

size_t OpenDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(all), end(all)));
}

class RemoteDialog : public DialogTest {
  protected:
    // With the user at the other end of a line.
    DialogOutcome RunOverLine(const TestImage &source, float radius, std::vector<UserAction> actions) {
        std::vector<DialogState> states;
        const std::unique_ptr<AnsweredDialogs> answered = AnswerDialogs(std::move(actions));
        answered->session.states = &states;
        SetDialogBackend(nullptr);
        UsePlatformData(kAnsweringHost, &answered->forModule);
        DialogOutcome outcome = RunOnBackend(source, radius);
        UsePlatformData(0, nullptr);
        outcome.states = std::move(states);
        return outcome;
    }

    // Passes packets on between a dialog and its script, but for what `damage` does to the answers. Returns
    // the number of answers.
    int RunDamaged(const std::function<bool(int number, Packet *answer)> &damage, DialogOutcome *outcome) {
        int ends[2];
        EXPECT_TRUE(remote::MakeLine(ends));
        int answers = 0;
        std::thread between([&] {
            const auto answered = AnswerDialogs(kSession);
            Packet packet;
            while (remote::ReceivePacket(ends[0], &packet)) {
                asked.push_back(packet);
                remote::SendPacket(answered->forModule.line, packet.mark, packet.content);
                const bool answer = packet.mark != remote::kState && packet.mark != remote::kRows;
                if (answer && (!remote::ReceivePacket(answered->forModule.line, &packet) ||
                               !damage(answers++, &packet) ||
                               !remote::SendPacket(ends[0], packet.mark, packet.content))) {
                    break;
                }
            }
            close(ends[0]);
        });
        SetDialogBackend(nullptr);
        remote::UseLine(ends[1], 200);
        const int64_t blocks = faults::BlocksInUse() - blocksKept;
        *outcome = RunOnBackend(image, 2);
        remote::UseLine(-1);
        close(ends[1]);
        between.join();
        // The copy at the other end may have been released after the run.
        blocksKept = faults::BlocksInUse() - blocks;
        return answers;
    }

    std::vector<Packet> asked;  // by the dialog
    const TestImage image = RandomImage(250, 181, 3, 1);
};

TEST_F(RemoteDialog, IsAsIfItWereHere) {
    int32_t hostEvents = 0;
    static int32_t *counted;
    counted = &hostEvents;
    processEvent = [](EventRecord *) { ++*counted; };
    const struct {
        float radius;
        Actions actions;
    } sessions[] = {
        {2, kSession},
        {2.5f, {Press(kRadiusBarItem, kDownArrow), Key(kEnter)}},
        {3, {Key('1'), Key('2'), Key(kBackspace), Click(kMinusItem), Key('5'), Click(kOKItem)}},
        {1,
         {Click(kPreviewCheckBoxItem), MoveThumb(kVerticalBarItem, 3), Press(kVerticalBarItem, kUp),
          Key(kReturn)}},
        {4,
         {Event(nullEvent), Event(updateEvt, true), Event(activateEvt, true), Event(updateEvt),
          Event(activateEvt)}},
        {3, {Key('5'), Key('.', cmdKey)}},
        {3, user::Answer(kRadiusFieldItem, "6")},
    };
    for (const auto &session : sessions) {
        SCOPED_TRACE(testing::Message() << "session " << &session - sessions);
        hostEvents = 0;
        const DialogOutcome here = Run(image, session.radius, session.actions);
        const int32_t eventsHere = std::exchange(hostEvents, 0);
        const DialogOutcome there = RunOverLine(image, session.radius, session.actions);
        EXPECT_EQ(hostEvents, eventsHere);
        EXPECT_EQ(there.result, here.result);
        EXPECT_EQ(there.stored, here.stored);
        EXPECT_EQ(there.rebuilds, here.rebuilds);
        ASSERT_EQ(there.states.size(), here.states.size());
        for (size_t i = 0; i < here.states.size(); ++i) {
            const DialogState &a = here.states[i];
            const DialogState &b = there.states[i];
            EXPECT_EQ(std::memcmp(&a.bounds, &b.bounds, sizeof a.bounds), 0) << i;
            EXPECT_EQ(a.picture, b.picture) << i;
            EXPECT_EQ(a.values, b.values) << i;
            EXPECT_EQ(a.controls, b.controls) << i;
            for (size_t item = 0; item < a.texts.size(); ++item) {
                EXPECT_EQ(a.texts[item].characters, b.texts[item].characters) << i;
                EXPECT_EQ(a.texts[item].selectionStart, b.texts[item].selectionStart) << i;
                EXPECT_EQ(a.texts[item].selectionEnd, b.texts[item].selectionEnd) << i;
            }
        }
    }
}

template <typename Record>
void Change(Packet *packet, void (*change)(Record *record)) {
    Record record;
    std::memcpy(&record, packet->content.data(), sizeof record);
    change(&record);
    std::memcpy(packet->content.data(), &record, sizeof record);
}

TEST_F(RemoteDialog, DamagedAnswersCancel) {
    DialogOutcome outcome;
    const int answers = RunDamaged([](int, Packet *) { return true; }, &outcome);
    ASSERT_EQ(outcome.stored, 4);
    const size_t descriptors = OpenDescriptors();
    bool (*const kDamages[])(Packet *) = {
        [](Packet *) { return false; },  // hangs up
        [](Packet *answer) { return answer->mark = 'x', true; },
        [](Packet *answer) { return answer->content.pop_back(), true; },
        [](Packet *answer) { return answer->content.clear(), true; },
        [](Packet *answer) {
            return answer->content.append(remote::kLargestContent - answer->content.size(), 'x'), true;
        },
    };
    // The last answer, to closing, comes when all is decided.
    for (int n = 0; n < answers - 1; ++n) {
        for (const auto &damage : kDamages) {
            SCOPED_TRACE(testing::Message() << "answer " << n << ", damage " << &damage - kDamages);
            RunDamaged([&](int number, Packet *answer) { return number != n || damage(answer); }, &outcome);
            EXPECT_EQ(outcome.result, userCanceledErr);
            EXPECT_EQ(outcome.stored, 2);
        }
    }
    // Answers of the right size that make no sense, each the first of its kind; and silence.
    const struct {
        char mark;
        void (*damage)(Packet *answer);
    } senseless[] = {
        {remote::kHello, [](Packet *p) { Change<remote::Hello>(p, [](remote::Hello *h) { ++h->version; }); }},
        {remote::kHello,
         [](Packet *p) { Change<remote::Hello>(p, [](remote::Hello *h) { ++h->greeting; }); }},
        {remote::kOpen, [](Packet *p) { Change<uint16_t>(p, [](uint16_t *open) { *open = 0; }); }},
        {remote::kNext,
         [](Packet *p) { Change<remote::NextEvent>(p, [](remote::NextEvent *e) { e->focusItem = 6; }); }},
        {remote::kNext,
         [](Packet *p) { Change<remote::NextEvent>(p, [](remote::NextEvent *e) { e->focusItem = -1; }); }},
        {remote::kNext,
         [](Packet *p) { Change<remote::NextEvent>(p, [](remote::NextEvent *e) { e->focusItem = 99; }); }},
        {remote::kEdit,
         [](Packet *p) { Change<remote::TextSelection>(p, [](remote::TextSelection *s) { s->end = 99; }); }},
        {remote::kEdit,
         [](Packet *p) { Change<remote::TextSelection>(p, [](remote::TextSelection *s) { s->start = 9; }); }},
        {remote::kEdit, [](Packet *p) { p->content.append(256, '1'); }},
        {remote::kNext, [](Packet *) { usleep(400000); }},
    };
    for (const auto &c : senseless) {
        SCOPED_TRACE(testing::Message() << "senseless answer " << &c - senseless);
        bool done = false;
        RunDamaged(
            [&](int, Packet *answer) {
                if (answer->mark == c.mark && !std::exchange(done, true)) {
                    c.damage(answer);
                }
                return true;
            },
            &outcome);
        EXPECT_EQ(outcome.result, userCanceledErr);
    }
    EXPECT_EQ(OpenDescriptors(), descriptors);
}

// Asks all the questions; true if that went well to the end.
bool AskAll(const std::vector<Packet> &questions) {
    const auto answered = AnswerDialogs(kSession);
    const int line = answered->forModule.line;
    remote::SetPatience(line, 2000);
    return std::all_of(questions.begin(), questions.end(), [=](const Packet &question) {
        const bool answer = question.mark != remote::kState && question.mark != remote::kRows;
        Packet packet;
        return remote::SendPacket(line, question.mark, question.content) &&
               (!answer || remote::ReceivePacket(line, &packet));
    });
}

// Whoever shows dialogs stops at a question that makes no sense, and keeps nothing.
TEST_F(RemoteDialog, DamagedQuestionsEndTheShow) {
    DialogOutcome outcome;
    RunDamaged([](int, Packet *) { return true; }, &outcome);
    ASSERT_TRUE(AskAll(asked));
    const int64_t blocks = faults::BlocksInUse();
    // A number is added to one or two fields of the last question of a kind.
    const struct {
        char mark;
        size_t fields[2];
        int16_t added;
    } senseless[] = {
        {remote::kRows, {0, 4}, 5000},                                 // rows below the window
        {remote::kRows, {2, 6}, -400},                                 // to its left
        {remote::kState, {12, 12}, 5000},                              // drawn beyond its bottom
        {remote::kState, {4, 4}, 1},                                   // of another height
        {remote::kTrack, {0, 0}, 99},                                  // no such control
        {remote::kTrack, {2, 2}, -1},     {remote::kEdit, {0, 0}, 1},  // not a text field
        {remote::kHello, {0, 0}, 1},      {remote::kHello, {4, 4}, 1},
    };
    for (const auto &c : senseless) {
        SCOPED_TRACE(testing::Message() << "senseless question " << &c - senseless);
        std::vector<Packet> questions = asked;
        const auto last = std::find_if(questions.rbegin(), questions.rend(),
                                       [&](const Packet &question) { return question.mark == c.mark; });
        for (size_t i = 0; i < (c.fields[0] == c.fields[1] ? 1 : 2); ++i) {
            int16_t field;
            std::memcpy(&field, &last->content[c.fields[i]], sizeof field);
            field = static_cast<int16_t>(field + c.added);
            std::memcpy(&last->content[c.fields[i]], &field, sizeof field);
        }
        EXPECT_FALSE(AskAll(questions));
    }
    // One is cut, too long, or has a few bytes changed, which may make sense.
    std::mt19937 random(5);
    for (size_t round = 0; round < 600; ++round) {
        std::vector<Packet> questions = asked;
        std::string *content = &questions[round % questions.size()].content;
        const size_t size = content->size();
        const bool changed = random() % 3 != 0 && size > 0;
        for (int bytes = 0; bytes < 3 && changed; ++bytes) {
            (*content)[random() % std::min<size_t>(size, 600)] = static_cast<char>(random());
        }
        if (!changed) {
            content->resize(random() % 2 != 0 ? size + 1 : size - std::min<size_t>(size, 1));
        }
        AskAll(questions);
    }
    EXPECT_EQ(faults::BlocksInUse(), blocks);
}

// Only the platformData of the one host that is known to give a line is ever looked at.
TEST_F(RemoteDialog, PlatformDataOfOthersIsTheirs) {
    const auto answered = AnswerDialogs({Click(kOKItem)});
    const DialogLine line = answered->forModule;
    const DialogLine otherTag = {kDialogLineTag + 1, line.size, line.line};
    const DialogLine tooShort = {line.tag, line.size - 1, line.line};
    const DialogLine noDescriptor = {line.tag, line.size, 9999};
    const struct {
        OSType hostSig;
        const void *platformData;
        OSErr result;
    } cases[] = {
        {FourCharCode("8BIM"), &line, userCanceledErr},
        {0, reinterpret_cast<const void *>(intptr_t{1}), userCanceledErr},
        {kAnsweringHost, nullptr, userCanceledErr},
        {kAnsweringHost, &otherTag, userCanceledErr},
        {kAnsweringHost, &tooShort, userCanceledErr},
        {kAnsweringHost, &noDescriptor, userCanceledErr},
        {kAnsweringHost, &line, noErr},
    };
    SetDialogBackend(nullptr);
    for (const auto &c : cases) {
        UsePlatformData(c.hostSig, c.platformData);
        EXPECT_EQ(RunOnBackend(image, 2).result, c.result) << &c - cases;
    }
    UsePlatformData(0, nullptr);
}

TEST(DialogLine, TakesNoPacketThatIsTooLarge) {
    int ends[2];
    ASSERT_TRUE(remote::MakeLine(ends));
    const std::string large(remote::kLargestContent + 2, 'x');
    Packet packet;
    for (const size_t size : {remote::kLargestContent + 1, remote::kLargestContent + 2}) {
        EXPECT_EQ(send(ends[0], large.data(), size, 0), static_cast<ssize_t>(size));
        EXPECT_EQ(remote::ReceivePacket(ends[1], &packet), size == remote::kLargestContent + 1);
    }
    EXPECT_FALSE(remote::SendPacket(ends[0], 'x', large));
    close(ends[0]);
    close(ends[1]);
}

// What takes the place of the program that shows dialogs.
TEST_F(RemoteDialog, ProgramsThatDoNotShowItLeaveNothing) {
    const auto install = [&](const std::string &script) {
        WriteBytes("hymedian-dialog", script);
        std::filesystem::permissions(folder / "hymedian-dialog", std::filesystem::perms::owner_all);
    };
    const std::string shell = "#!/bin/sh\necho noise; echo noise >&2\n";
    // A shell would change what it inherits.
    const std::string seesSignals =
        "#!/usr/bin/awk -f\nBEGIN { while ((getline < \"/proc/self/status\") > 0)\n"
        "if (/SigBlk|SigIgn/) print >\"" +
        Path("signals") + "\" }\n";
    EXPECT_EQ(TryDialogProgram(folder), kNoDialogProgram);
    const size_t descriptors = OpenDescriptors();
    signal(SIGTERM, SIG_IGN);
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGINT);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    const int inherited = fcntl(STDERR_FILENO, F_DUPFD, 57);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const struct {
        std::string script;
        OSErr problem;
    } cases[] = {
        {shell + "exit 127", kNoToolkit},
        {shell + "exit 0", kNoDisplay},
        {shell + "kill -ABRT $$", kNoDisplay},
        {shell + "cat </dev/zero >&3 2>/dev/null", kNoDisplay},
        {shell + "ls /proc/$$/fd >$0.fds; cut -d' ' -f5 /proc/$$/stat >$0.group", kNoDisplay},
        {seesSignals, kNoDisplay},
    };
    for (const auto &c : cases) {
        install(c.script);
        EXPECT_EQ(TryDialogProgram(folder), c.problem) << c.script;
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
    std::istringstream signals(ContentsOf(folder / "signals"));
    uint64_t of = 0;
    int seen = 0;
    for (std::string name; signals >> name >> std::hex >> of; ++seen) {
        EXPECT_EQ(of & 0x7FFFFFFF, 0u) << name;
    }
    EXPECT_EQ(seen, 2);
    EXPECT_NE(std::stoi(ContentsOf(folder / "hymedian-dialog.group")), getpgrp());
    const std::string open = ContentsOf(folder / "hymedian-dialog.fds");
    EXPECT_NE(open.find("\n3\n"), std::string::npos) << open;
    EXPECT_EQ(open.find("\n57\n"), std::string::npos) << open;
    close(inherited);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    signal(SIGTERM, SIG_DFL);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process is left";
    EXPECT_EQ(OpenDescriptors(), descriptors);
}

}  // namespace
