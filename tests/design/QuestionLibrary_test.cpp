// The question library: its tree, and where a library question's text goes.
#include "design/DesignScreen.h"

#include "platform/richtext/RichText.h"

namespace pollarix::test {
namespace {

using namespace kind;

class QuestionLibrary : public DesignScreen {
  protected:
    // A library of its own, with two categories of one name.
    QuestionLibrary() {
        const QString path = Path("Library.mdb");
        EXPECT_TRUE(QFile::copy(state.directories.InProgram("Library.mdb"), path));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        RunSql(path,
               {"DELETE FROM question", "DELETE FROM category",
                "INSERT INTO category (id, name) VALUES (1, 'b'), (2, 'A'), (3, 'b')",
                "INSERT INTO question (id, name, categoryid) VALUES (1, 'What''s <up>?', 1), "
                "(2, 'any other?', 1), (3, '{\\rtf1 {\\b Bold}\\par two}', 3), (4, NULL, 3)"});
        state.LibraryConnection.Close();
        state.LibraryConnection.Open(path);
        design_->LoadLibrary();
    }
    void AddFromLibrary(const char* key) {
        if (TreeNode* const node = Get<TreeView>("tvTreeLibrary").Find(key))
            node->SetSelected();
        Press("cmdLibraryAdd");
    }
};

TEST_F(QuestionLibrary, FillsTheEmptyQuestionOrAddsANewOne) {
    Add(Check);
    EXPECT_FALSE(Marks([&] { AddFromLibrary("Q_1"); })) << "filling marks nothing";
    EXPECT_TRUE(Marks([&] { AddFromLibrary("Q_3"); }));
    EXPECT_TRUE(ReadRichText(Q(2).Question).paragraphs.at(0).runs.at(0).format.bold);
    AddFromLibrary("Q_4");
    EXPECT_EQ(Nodes(), "1. What's <up>?|2. Bold|3. <Text not yet entered>") << "Null is no text";
    EXPECT_EQ(Q(1).qType, Check);
    EXPECT_EQ(Q(2).qType, OpenEnded);
    // With the root selected, an empty hidden box takes the text and no question does.
    ClickNode(3);
    ClickNode(0);
    EXPECT_FALSE(Marks([&] { AddFromLibrary("Q_2"); }));
    EXPECT_EQ(PlainTextOf(Q(3).Question), "");
    AddFromLibrary("Q_2");
    EXPECT_EQ(PlainTextOf(Q(4).Question), "any other?");
}

TEST_F(QuestionLibrary, RefusesWhatIsNoQuestion) {
    Add(OpenEnded);
    EXPECT_FALSE(Marks([&] {
        for (const char* key : {"", "S_Parent", "CAT_1"})
            AddFromLibrary(key);
    }));
    const QString refusal =
        "No question has been selected to add. Please select a question to add to continue.";
    EXPECT_EQ(dialogs.TakeTexts(), QStringList({refusal, refusal, refusal}));
    EXPECT_EQ(design_->EditorText(), "");
}

} // namespace
} // namespace pollarix::test
