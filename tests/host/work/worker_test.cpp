// A worker process as seen by its parent.
#include <sys/socket.h>

#include "host/picture/picture.h"
#include "host/work/worker_job.h"
#include "host/work/worker_pool.h"
#include "platform/packing.h"
#include "tests/host/program_fixture.h"

namespace {

class Worker : public Program {
  protected:
    Worker() { socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, line); }
    ~Worker() override { close(line[0]); }

    pid_t StartWorker(std::vector<int> shared) {
        shared.insert(shared.begin(), line[1]);
        descriptors = std::move(shared);
        const pid_t worker = Start({kWorkerArgument});
        close(line[1]);
        return worker;
    }

    // Returns the answer to a job.
    std::string Do(const std::string &job) {
        send(line[0], job.data(), job.size(), 0);
        std::vector<char> packet(kLargestPacket);
        for (;;) {
            const ssize_t size = recv(line[0], packet.data(), packet.size(), 0);
            std::string_view content(packet.data(), static_cast<size_t>(std::max<ssize_t>(size, 1)));
            content.remove_prefix(1);
            if (size <= 0 || packet[0] == kAnswerMark) {
                return std::string(content);
            }
            double progress = -1;
            EXPECT_TRUE(TakeRecord(&content, &progress));
            EXPECT_TRUE(progress >= 0 && progress <= 1) << progress;
        }
    }

    int line[2];
};

TEST_F(Worker, DoesFilesAndBandsUntilTheLineEnds) {
    WriteNoise("in.png", 90, 70, 3);
    const std::string plugin = DefaultPluginFolder();
    FileTask task = {Path("in.png"), {"out.png"}, {Path("out.png")}, {}};
    task.settings.orders.action.items.push_back({.key = kRadiusKey, .type = typeFloat, .number = 2});
    Picture noise;
    ASSERT_FALSE(OpenPicture(task.inputFile, &noise) || !MapPixels(Sharing::withWorkers, &noise.document));
    const Document &document = noise.document;
    RowReader reader = StartReading(&noise);
    ASSERT_FALSE(ReadRows(&reader, document.height, &noise.document, 0));
    const pid_t worker = StartWorker(
        {document.source.get_deleter().descriptor, document.destination.get_deleter().descriptor});

    FileAnswer answer;
    ASSERT_TRUE(UnpackAnswer(Do(PackFileJob(plugin, task)), &answer));
    EXPECT_FALSE(answer.failure);
    EXPECT_EQ(WordsOn(answer.report), "90 x 70 RGB, 8 bits, radius 2");
    for (const Band &rows : {Band{0, 30, 0, 36, true}, Band{30, 70, 24, 70, true}}) {
        FilterOutcome outcome;
        const std::string job = PackBandJob(plugin, document, {PixelBytes(document), rows.frameTop, 0, rows},
                                            task.settings.orders);
        ASSERT_TRUE(UnpackOutcome(Do(job), &outcome));
        EXPECT_EQ(outcome.result, noErr);
    }
    Picture filtered;
    ASSERT_FALSE(OpenPicture(Path("out.png"), &filtered) || ReadPixels(&filtered, {}));
    EXPECT_TRUE(std::equal(document.destination.get(), document.destination.get() + PixelBytes(document),
                           filtered.document.source.get()));

    task.inputFile = "missing.png";
    ASSERT_TRUE(UnpackAnswer(Do(PackFileJob(plugin, task)), &answer));
    EXPECT_EQ(answer.failure->sentence, "missing.png: no such file.");
    shutdown(line[0], SHUT_RDWR);
    const Ended ended = Wait(worker);
    EXPECT_EQ(ended.status, 0) << ended.err;
}

TEST_F(Worker, WithoutThePluginSaysSo) {
    const pid_t worker = StartWorker({});
    FileAnswer answer;
    ASSERT_TRUE(UnpackAnswer(Do(PackFileJob("nowhere", {"in.png", {"out.png"}, {}, {}})), &answer));
    EXPECT_NE(answer.failure->sentence.find("nowhere"), std::string::npos);
    shutdown(line[0], SHUT_RDWR);
    Wait(worker);
}

TEST_F(Worker, NonsenseEndsIt) {
    const FilterOrders orders = {
        {kHybridMedianEvent, {{.key = kRadiusKey, .type = typeFloat, .number = 2}}}, DialogUser::script, 5};
    FileTask task;
    task.settings.orders = orders;
    for (const std::string &job : {PackFileJob("plugin", task), PackBandJob("plugin", {}, {}, orders)}) {
        WorkerJob unpacked;
        EXPECT_TRUE(UnpackJob(job, &unpacked));
        for (size_t size = 0; size < job.size(); ++size) {
            ASSERT_FALSE(UnpackJob(std::string_view(job).substr(0, size), &unpacked)) << size;
        }
    }
    const pid_t worker = StartWorker({});
    EXPECT_EQ(Do("nonsense"), "");
    EXPECT_EQ(Wait(worker).status, 2);
}

// A parent killed right after starting a worker leaves a job behind.
TEST_F(Worker, DoesNothingForADeadParent) {
    WriteNoise("in.png", 90, 70, 3);
    const std::string job =
        PackFileJob(DefaultPluginFolder(), {Path("in.png"), {"out.png"}, {Path("out.png")}, {}});
    send(line[0], job.data(), job.size(), 0);
    close(std::exchange(line[0], -1));
    EXPECT_EQ(Wait(StartWorker({})).status, 0);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.png"));
}

}  // namespace
