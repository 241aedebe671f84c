#include "support.h"

namespace quor_test {

struct NotesFile : LogFile {
    using LogFile::Close, LogFile::Open, LogFile::Write, LogFile::WriteHeader;
    ~NotesFile() override { Close(); }
    std::string FileHeader() const override { return "header\n"; }
    std::string AppendBanner() const override { return "banner\n"; }
    std::string FileTrailer() const override { return "trailer\n"; }
    std::string LineHeader() const override { return "<"; }
    std::string LineTrailer() const override { return ">"; }
    void Error(int errorCode) override {
        errors.push_back(errorCode);
        HandleError(0);  // does not come back here
        LogFile::Error(errorCode);
    }
    std::vector<int> errors;
};

mode_t ModeOf(const char* name) {
    struct stat status {};
    stat(name, &status);
    return status.st_mode & 07777;
}

TEST(LogFile, GivesNewAndEmptyFilesAHeaderAndMode0666AndOthersABanner) {
    const struct {
        const char* name;
        const char* before;
        const char* after;
        mode_t mode;
    } rows[] = {{"missing", nullptr, "header\n<text>\ntrailer\n", 0666},
                {"empty", "", "header\n<text>\ntrailer\n", 0666},
                {"filled", "old\n", "old\nbanner\n<text>\ntrailer\n", 0600},
                {"link", nullptr, "header\n<text>\ntrailer\n", 0666}};
    const Folder folder;
    std::filesystem::create_symlink("target", "link");
    const mode_t mask = umask(077);
    const int masks = g_hooks.Calls(Call::eMask);  // what other threads create stays as it is
    for (const auto& row : rows) {
        if (row.before != nullptr) {
            std::ofstream(row.name) << row.before;
        }
        NotesFile file;
        EXPECT_TRUE(file.Open(row.name, false));
        file.Write("text", 2);
        file.Close();
        file.Close();
        file.Write("closed", 6);
        EXPECT_EQ(ReadFile(row.name), row.after) << row.name;
        EXPECT_EQ(ModeOf(row.name), row.mode) << row.name;
    }
    g_hooks.Plan(Hooks::Bit(Call::eSeek), 1);  // another process may write to it before then
    EXPECT_FALSE(NotesFile().Open("unsought", false));
    EXPECT_EQ(ModeOf("unsought"), 0666u);
    EXPECT_EQ(g_hooks.Calls(Call::eMask), masks);
    EXPECT_EQ(umask(mask), 077u);
}

TEST(LogFile, FramesLinesAsTheFlagsSayInOneWriteEach) {
    const Folder folder;
    NotesFile file;
    const int writes = g_hooks.Calls(Call::eWrite);
    const int syncs = g_hooks.Calls(Call::eSync);
    RunCancelled([&file] {
        EXPECT_TRUE(file.Open("notes", true));
        for (const auto& [header, trailer] :
             {std::pair(true, true), {true, false}, {false, true}, {false, false}}) {
            bool headerRead = !header;
            bool trailerRead = !trailer;
            EXPECT_TRUE(file.SetPrintLineHeader(header) && file.GetPrintLineHeader(headerRead));
            EXPECT_TRUE(file.SetPrintLineTrailer(trailer) && file.GetPrintLineTrailer(trailerRead));
            EXPECT_TRUE(headerRead == header && trailerRead == trailer);
            file.Write("a\nb", 0);
        }
        std::string block = "block";
        EXPECT_TRUE(file.WriteHeader(block));
        file.Close();
    });
    EXPECT_EQ(g_hooks.Calls(Call::eWrite) - writes, 7);
    EXPECT_EQ(g_hooks.Calls(Call::eSync) - syncs, 4);
    EXPECT_EQ(ReadFile("notes"), "header\n<a\nb>\n<a\nb\na\nb>\na\nb\nblocktrailer\n");
}

TEST(LogFile, ClosesDescriptor1AndNeitherSeeksNorSyncsIt) {
    const Folder folder;
    const Redirected output(STDOUT_FILENO, "output");
    std::ofstream("output") << "old\n";
    const int syncs = g_hooks.Calls(Call::eSync);
    NotesFile file;
    for (const char* name : {"", "first free", "first free"}) {  // the file gets descriptor 1
        EXPECT_TRUE(file.Open(name, true));
        EXPECT_NE(fcntl(STDOUT_FILENO, F_GETFD), -1);
        file.Write("text", 4);
        file.Close();
        EXPECT_EQ(fcntl(STDOUT_FILENO, F_GETFD), -1);
    }
    EXPECT_EQ(g_hooks.Calls(Call::eSync), syncs);
    EXPECT_EQ(ReadFile("output"), "old\nheader\n<text>\ntrailer\n");
    EXPECT_EQ(ReadFile("first free"), "header\n<text>\ntrailer\nheader\n<text>\ntrailer\n");
}

TEST(LogFile, ReportsAFailureOnceAndStaysClosedUntilOpenedAgain) {
    const Folder folder;
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    const int reader = open("fifo", O_RDONLY | O_NONBLOCK);
    const auto descriptors = OpenDescriptors();
    NotesFile file;
    std::string block = "closed";
    {
        const Redirected errors(STDERR_FILENO, "errors");
        for (const char* name : {"missing/notes", ".", "fifo", "/dev/full"}) {
            EXPECT_FALSE(file.Open(name, false)) << name;
        }
        EXPECT_TRUE(file.Open("notes", false));
        const ScopedValue full(g_hooks.diskFull, true);
        file.Write("lost", 4);
        file.Write("closed", 6);
        EXPECT_FALSE(file.WriteHeader(block));
    }
    EXPECT_THAT(file.errors, testing::ElementsAre(EBADF, EBADF, ESPIPE, ENOSPC, ENOSPC, EBADF));
    EXPECT_EQ(ReadFile("errors"),
              "Unable to write to log file: /dev/full\nUnable to write to log file: notes\n");
    EXPECT_EQ(OpenDescriptors(), descriptors);
    char text[100];
    EXPECT_EQ(std::string(text, static_cast<std::size_t>(read(reader, text, 100))), "trailer\n");
    close(reader);
    EXPECT_TRUE(file.Open("notes", false));
    EXPECT_EQ(ReadFile("notes"), "header\nbanner\n");
}

}  // namespace quor_test
