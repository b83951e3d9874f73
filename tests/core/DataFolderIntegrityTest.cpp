// Saves that meet another writer's changes, an interrupted save, an unreadable file,
// a busy folder, and the restore points of the actions that replace the set.
#include "CoreTest.h"
#include "TdataFolderLock.h"
#include "TdataSet.h"
#include "TrestorePoints.h"
#include <sys/file.h>

namespace {
// A title as a save writes it and a load shows it: padded to the record's 18 characters.
std::string padded(const std::string &title)
{
    return title + std::string(18 - title.size(), ' ');
}
std::string inspectionFile(const std::string &title)
{
    return asqHeader("Physical Inspections", "", 1) + asqRecord(padded(title), "", 0, positions({1}));
}

struct DataFolder : ::testing::Test {
    DataFolder()
    {
        dir.write("Data/mit.dat", checkitem('B', 'M', "item"));
        dir.write("Data/inspection.asq", inspectionFile("OURS"));
        data.loadAll();
        sink.messages.clear();
    }
    fs::path file(const std::string &name) const { return dir / ("Data/" + name); }
    TempDir dir;
    RecordingMessageSink sink;
    TdataSet data{dir.path(), sink};
};
}

TEST_F(DataFolder, AFileAnotherProgramChangedIsNeverOverwrittenWithoutAsking)
{
    const Message question{"Data File Changed", "The file\n" + file("inspection.asq").string()
                               + "\nwas changed by another program after it was loaded here.\n\n"
                                 "Yes keeps the version shown here and replaces the file.\n"
                                 "No loads the file's new content instead; the changes made here to it are dropped.",
                           MsgIcon::Question, MsgButtons::YesNo};
    // Unchanged here there is nothing to lose: theirs is taken without a question.
    for (const auto &[changedHere, answer, kept] : {std::tuple{false, MsgAnswer::Yes, "THEIRS"},
                                                    {true, MsgAnswer::Yes, "EDITED"},
                                                    {true, MsgAnswer::No, "THEIRS"}}) {
        dir.write("Data/inspection.asq", inspectionFile("OURS"));
        data.loadInspections();
        dir.write("Data/inspection.asq", inspectionFile("THEIRS"));
        if (changedHere)
            Tautosequence::setTitle(data.inspections[0].title1, "EDITED");
        sink.messages.clear();
        sink.answers = {answer};
        data.saveInspections();
        EXPECT_EQ(sink.messages, changedHere ? std::vector<Message>{question} : std::vector<Message>{});
        EXPECT_EQ(TempDir::read(file("inspection.asq")), inspectionFile(kept));
        EXPECT_EQ(Tautosequence::titleText(data.inspections[0].title1), padded(kept));
    }
    // The checkitem editor's sync saves through a data set of its own into the table the frame holds:
    // a save of this process is not another program's change.
    sink.messages.clear();
    TdataSet editorSync(dir.path(), sink);
    editorSync.checkitems[0] = TInstr('C', 'M', "synced");
    ASSERT_TRUE(editorSync.saveCheckitems(TsaveAction::Sync));
    data.checkitems[0] = TInstr('C', 'M', "synced, then edited");
    ASSERT_TRUE(data.saveCheckitems());
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(TempDir::read(file("mit.dat")).substr(0, 44), checkitem('C', 'M', "synced, then edited"));
}

TEST_F(DataFolder, TheNextLoadFinishesASaveKilledAfterItsRecordAndDropsOneKilledBefore)
{
    for (const bool recorded : {true, false}) {
        dir.write("Data/mit.dat", "old mit");
        dir.write("Data/inspection.asq", inspectionFile("OLD"));
        dir.write("Data/mit.dat.tmpAAAAAA", "new mit");
        dir.write("Data/inspection.asq.tmpBBBBBB", inspectionFile("NEW"));
        if (recorded) {
            using namespace std::string_literals;
            dir.write("Data/.saving", file("inspection.asq.tmpBBBBBB").string() + "\0"s
                          + file("inspection.asq").string() + "\0"s + file("mit.dat.tmpAAAAAA").string() + "\0"s
                          + file("mit.dat").string() + "\0"s);
        }
        data.loadAll();
        EXPECT_EQ(Tautosequence::titleText(data.inspections[0].title1), padded(recorded ? "NEW" : "OLD"));
        EXPECT_EQ(tree(dir / "Data"), "inspection.asq mit.dat=" + std::string(recorded ? "new mit " : "old mit "));
    }
}

TEST_F(DataFolder, AFileThatFailedToLoadIsKeptBeforeASaveReplacesIt)
{
    const std::string cut = inspectionFile("CUT").substr(0, 100);
    dir.write("Data/inspection.asq", cut);
    data.loadInspections();
    EXPECT_EQ(data.folderWarnings(), std::vector<std::string>{file("inspection.asq").string()
                                      + " could not be read: before a save replaces it, its content is kept as "
                                        "inspection.asq.unreadable-<date>-<time> beside it."});
    sink.messages.clear();
    ASSERT_TRUE(data.saveInspections());
    fs::path kept;
    for (const auto &entry : fs::directory_iterator(dir / "Data"))
        if (entry.path().filename().string().rfind("inspection.asq.unreadable-", 0) == 0)
            kept = entry.path();
    EXPECT_EQ(TempDir::read(kept), cut);
    EXPECT_EQ(sink.messages, (Messages{{"Unreadable File Kept", "The file " + file("inspection.asq").string()
                                            + " could not be read. Its original content was kept as\n" + kept.string()
                                            + "\nbefore it was replaced.", MsgIcon::Information}}));
    EXPECT_TRUE(data.folderWarnings().empty());
}

TEST_F(DataFolder, ABusyFolderIsNamedWithItsHolderAndNothingIsSaved)
{
    const int held = ::open(file(".lock").c_str(), O_RDWR | O_CREAT, 0600);
    ASSERT_EQ(::write(held, "4242\n", 5), 5);
    ASSERT_EQ(::flock(held, LOCK_EX), 0);
    TdataFolderLock::setWaitForTests(std::chrono::milliseconds(30));
    Tautosequence::setTitle(data.inspections[0].title1, "EDITED");
    EXPECT_FALSE(data.saveInspections());
    TdataFolderLock::setWaitForTests(std::chrono::milliseconds(-1));
    ::close(held);
    EXPECT_EQ(sink.messages, (Messages{{"Data Folder Busy", "The data folder " + (dir / "Data").string()
                                            + " is being saved by process 4242, which has not finished. "
                                              "Try again later.\nNothing was saved."}}));
    EXPECT_EQ(TempDir::read(file("inspection.asq")), inspectionFile("OURS"));
}

TEST_F(DataFolder, DownloadAndSyncKeepRestorePointsThatPutTheSetBack)
{
    const std::string original = TempDir::read(file("mit.dat"));
    data.checkitems[0] = TInstr('C', 'M', "downloaded");
    ASSERT_TRUE(data.saveCheckitems(TsaveAction::Download));
    data.checkitems[0] = TInstr('C', 'M', "synced");
    ASSERT_TRUE(data.saveCheckitems(TsaveAction::Sync));
    const std::string synced = TempDir::read(file("mit.dat"));
    data.saveInspections(); // an edit keeps none

    TrestorePoints points(dir / "Data");
    const auto shown = [&] {
        std::string out;
        for (const auto &point : points.list())
            out += point.action + ":" + point.files.at(0) + "=" + TempDir::read(point.folder / "mit.dat").substr(2, 4)
                + " ";
        return out;
    };
    EXPECT_EQ(shown(), "sync:mit.dat=down download:mit.dat=item ");
    std::string why;
    ASSERT_TRUE(points.restore(2, why)) << why;
    EXPECT_EQ(TempDir::read(file("mit.dat")), original);
    EXPECT_EQ(TempDir::read(points.list().at(0).folder / "mit.dat"), synced); // the table the restore replaced
    for (int i = 0; i < 25; ++i)
        ASSERT_TRUE(points.create("import", {"mit.dat"}, why));
    EXPECT_EQ(points.list().size(), TrestorePoints::Kept);
}

TEST(RestorePoints, ALinkPlantedAsTheRestoreFolderGetsNoCopiesAndOffersNothingToRestore)
{
    TempDir data, elsewhere;
    data.write("mit.dat", "mine");
    elsewhere.write("20261123-141503-1/mit.dat", "planted");
    elsewhere.write("20261123-141503-1/action", "download\n");
    fs::create_symlink(elsewhere.path(), data / ".restore");
    TrestorePoints points(data.path());
    std::string why;
    EXPECT_FALSE(points.create("import", {"mit.dat"}, why));
    EXPECT_EQ(why, "The restore point folder " + (data / ".restore").string() + " is not a folder of your own.");
    EXPECT_TRUE(points.list().empty());
    EXPECT_FALSE(points.restore(1, why));
    EXPECT_EQ(tree(data.path()) + tree(elsewhere.path()),
              ".lock= .restore->" + elsewhere.path().string() + " mit.dat=mine 20261123-141503-1/ "
                  + "20261123-141503-1/action=download\n 20261123-141503-1/mit.dat=planted ");
}
