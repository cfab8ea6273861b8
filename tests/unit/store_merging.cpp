// SPDX-License-Identifier: MIT
#include "model_title.h"
#include "store_support.h"

#include <Foundation/NSString.h>

#include <fstream>

#include <sys/stat.h>

namespace {

using model::Configuration;
using store::Choice;
using store::Code;

/// A running program: a store and the model it loaded.
struct Program {
    explicit Program(const std::filesystem::path& file) : store(file) { model.setConfigurations(load()); }

    std::vector<std::shared_ptr<Configuration>> load() {
        auto result = store.load();
        EXPECT_EQ(sentenceOf(result), "");
        return std::move(result.configurations);
    }
    std::string save(const store::Ask& ask = {}) { return sentenceOf(store.save(model, ask)); }
    std::shared_ptr<host::ImprinterConfiguration> operator[](const std::u16string& id) {
        return model.configurationForID(id);
    }
    std::shared_ptr<host::ImprinterConfiguration> add(const std::u16string& name) {
        auto made = model.createConfiguration(false);
        made->setName(name);
        return made;
    }
    void remove(const std::u16string& id) { model.deleteConfigurationAtIndex(model.indexOfConfiguration((*this)[id])); }
    void move(const std::u16string& id, host::NSUInteger row) {
        model.moveConfigurationAtIndexTo(model.indexOfConfiguration((*this)[id]), row);
    }
    /// The names in order, separated by spaces.
    std::string names() const {
        std::string names;
        for (const auto& configuration : *model.configurations())
            names += (names.empty() ? "" : " ") + platform::toUtf8(configuration->name());
        return names;
    }

    store::Store store;
    model::ImprinterModel model;
};

/// Answers the same to whatever is asked, and counts.
struct Answer {
    std::optional<Choice> choice;
    std::vector<std::string> asked;
    store::Ask ask() {
        return [this](const store::Conflict& conflict) {
            asked.push_back(platform::toUtf8(conflict.mine) + "/" + platform::toUtf8(conflict.theirs));
            return choice;
        };
    }
};

class Merging : public StoreTest {
protected:
    Merging() {
        put(documentOf(R"({"uniqueID": "a", "name": "A"}, {"uniqueID": "b", "name": "B"},
                          {"uniqueID": "c", "name": "C"},
                          {"uniqueID": "all", "name": "All", "combinedConfiguration": true, "members": ["a", "b"]})"));
        one.emplace(file);
        other.emplace(file);
    }
    /// What a program that starts now finds.
    std::string stored() const { return Program(file).names(); }
    /// The names of the members of `id` that it finds, separated by spaces.
    std::string members(const std::u16string& id = u"all") const {
        std::string names;
        const Program now(file);
        for (const auto& member : *now.model.configurationForID(id)->configurations())
            names += (names.empty() ? "" : " ") + platform::toUtf8(member->name());
        return names;
    }
    static std::vector<std::string> told(const Program& program) {
        std::vector<std::string> sentences;
        for (const auto& notice : program.store.notices())
            sentences.push_back(platform::toUtf8(notice.sentence));
        return sentences;
    }

    std::optional<Program> one;
    std::optional<Program> other;
};

TEST_F(Merging, JoinsWhatTwoProgramsChangedInDifferentConfigurations) {
    (*one)[u"a"]->setRotation(30);
    (*one)[u"a"]->setTitleTokens(titleOf({u"title of one"}));
    (*other)[u"b"]->setName(u"B2");
    EXPECT_EQ(one->save(), "");
    EXPECT_EQ(other->save(), "");
    EXPECT_EQ(stored(), "A B2 C All");
    EXPECT_EQ(Program(file)[u"a"]->rotation(), 30);
    EXPECT_EQ(other->names(), "A B2 C All");
    EXPECT_EQ((*other)[u"a"]->rotation(), 30) << "the model is what was written";
    EXPECT_EQ(*(*other)[u"a"]->titleTokens(), std::vector<host::TitleToken>{u"title of one"});
}

TEST_F(Merging, LeavesThePaneTheObjectsItKnows) {
    const auto shown = (*other)[u"a"];
    const auto combined = (*other)[u"all"];
    const auto untouched = runAt(*(*other)[u"c"], 0);
    (*one)[u"a"]->setName(u"A2");
    one->remove(u"b");
    (*other)[u"c"]->setName(u"C2");
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(), "");
    EXPECT_EQ((*other)[u"a"], shown);
    EXPECT_EQ(shown->name(), u"A2");
    EXPECT_EQ((*other)[u"all"], combined);
    EXPECT_EQ(runAt(*(*other)[u"c"], 0), untouched) << "what nobody else changed keeps its font runs";
    ASSERT_EQ(platform::count(combined->configurations()), 1u);
    EXPECT_EQ(combined->configurations()->front(), shown);
    // The runs that came tell their new owner's changes.
    int told = 0;
    other->model.setOnChange([&](const auto& changed) { told += changed == shown ? 1 : 0; });
    runAt(*shown, 0)->setFontSize(77);
    EXPECT_EQ(told, 1);
}

TEST_F(Merging, KeepsWhatEitherAddedBehindWhatItStoodBehind) {
    one->add(u"New1");
    other->add(u"New2");
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(), "");
    EXPECT_EQ(stored(), "A B C All New1 New2");
    EXPECT_EQ(other->names(), stored());
}

TEST_F(Merging, TakesAwayWhatEitherDeleted) {
    one->remove(u"a");
    other->remove(u"c");
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(), "");
    EXPECT_EQ(stored(), "B All");
    EXPECT_EQ(platform::count(Program(file)[u"all"]->configurations()), 1u);
}

TEST_F(Merging, KeepsWhatOneEditedAndTheOtherDeleted) {
    one->remove(u"a");
    (*other)[u"a"]->setName(u"A2");
    other->remove(u"c");
    (*one)[u"c"]->setName(u"C2");
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(), "");
    EXPECT_EQ(stored(), "A2 B C2 All");
    EXPECT_TRUE(told(*one).empty());
    EXPECT_EQ(told(*other), (std::vector<std::string>{
                                "“A2” was deleted by another program and changed here; it was kept.",
                                "“C2” was deleted here and changed by another program; it was kept.",
                            }));
    EXPECT_EQ(members(), "A2 B") << "and stays a member";
}

TEST_F(Merging, WhatOnePutIntoACombinedOneOutlivesItsDeletionByTheOther) {
    for (const bool deletedFirst : {true, false}) {
        SCOPED_TRACE(deletedFirst);
        put(documentOf(R"({"uniqueID": "a", "name": "A"}, {"uniqueID": "c", "name": "C"},
                          {"uniqueID": "all", "name": "All", "combinedConfiguration": true, "members": ["a"]})"));
        Program deleting(file);
        Program using_(file);
        deleting.remove(u"c");
        using_[u"all"]->addConfiguration(using_[u"c"]);
        ASSERT_EQ((deletedFirst ? deleting : using_).save(), "");
        ASSERT_EQ((deletedFirst ? using_ : deleting).save(), "");
        EXPECT_EQ(stored(), "A C All");
        EXPECT_EQ(members(), "A C");
        EXPECT_EQ(told(deletedFirst ? using_ : deleting),
                  std::vector<std::string>{
                      deletedFirst ? "“C” was deleted by another program and put into “All” here; it was kept."
                                   : "“C” was deleted here and put into “All” by another program; it was kept."});
        EXPECT_EQ(deleting.save(), "");
        EXPECT_EQ(using_.save(), "");
        EXPECT_TRUE(told(deleting).empty() && told(using_).empty()) << "once is enough";
        EXPECT_EQ(deleting.names(), using_.names());
    }
}

TEST_F(Merging, ANewCombinedOneKeepsTheMembersThatTheOtherDeleted) {
    one->remove(u"a");
    const auto made = other->model.createConfiguration(true);
    made->setName(u"New");
    made->addConfiguration((*other)[u"a"]);
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(), "");
    EXPECT_EQ(stored(), "A B C All New");
    EXPECT_EQ(members(made->uniqueID()), "A");
    EXPECT_EQ(members(), "A B") << "what stays is where it was";
}

TEST_F(Merging, ACombinedOneWhoseMembersWereChangedOutlivesItsDeletion) {
    for (const bool deletedFirst : {true, false}) {
        SCOPED_TRACE(deletedFirst);
        put(documentOf(R"({"uniqueID": "a", "name": "A"}, {"uniqueID": "b", "name": "B"},
                          {"uniqueID": "all", "name": "All", "combinedConfiguration": true, "members": ["a", "b"]})"));
        Program deleting(file);
        Program changing(file);
        // Taken out by one, and gone at the other: what both wanted is no less a change.
        deleting.remove(u"all");
        deleting.remove(u"a");
        changing[u"all"]->deleteConfiguration(changing[u"a"]);
        ASSERT_EQ((deletedFirst ? deleting : changing).save(), "");
        ASSERT_EQ((deletedFirst ? changing : deleting).save(), "");
        EXPECT_EQ(stored(), "B All");
        EXPECT_EQ(members(), "B");
        EXPECT_EQ(told(deletedFirst ? changing : deleting).size(), 1u);
    }
}

TEST_F(Merging, WithItsMembersACombinedOneThatNobodyChangedIsDeleted) {
    one->remove(u"all");
    other->remove(u"a");
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(), "");
    EXPECT_EQ(stored(), "B C") << "that it lost a member is no change of it";
    EXPECT_TRUE(told(*other).empty());
}

TEST_F(Merging, MembersThatBothChangedAreAsked) {
    Answer answer{Choice::both, {}};
    (*one)[u"all"]->addConfiguration((*one)[u"c"]);
    (*other)[u"all"]->deleteConfiguration((*other)[u"a"]);
    other->remove(u"c");
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(answer.ask()), "");
    EXPECT_EQ(answer.asked, std::vector<std::string>{"All/All"});
    EXPECT_EQ(stored(), "A B C All All copy");
    EXPECT_EQ(members(), "B");
    EXPECT_EQ(members(Program(file).model.configurations()->back()->uniqueID()), "A B C");
}

TEST_F(Merging, AMemberThatBecameACombinedOneMeanwhileIsLeftOutAndNamed) {
    (*one)[u"all"]->addConfiguration((*one)[u"c"]);
    put(documentOf(R"({"uniqueID": "a", "name": "A"}, {"uniqueID": "b", "name": "B"},
                      {"uniqueID": "c", "name": "C", "combinedConfiguration": true, "members": ["a"]},
                      {"uniqueID": "all", "name": "All", "combinedConfiguration": true, "members": ["a", "b"]})"));
    ASSERT_EQ(one->save(), "");
    EXPECT_EQ(members(), "A B");
    EXPECT_EQ(told(*one),
              std::vector<std::string>{"“C” is no member of “All”, since it is a combined configuration now."});
}

TEST_F(Merging, ADeletedMemberIsNoChangeOfTheCombinedOne) {
    Answer answer{Choice::mine, {}};
    one->remove(u"a");
    (*other)[u"all"]->addConfiguration((*other)[u"c"]);
    ASSERT_EQ(one->save(answer.ask()), "");
    ASSERT_EQ(other->save(answer.ask()), "");
    EXPECT_TRUE(answer.asked.empty());
    const auto members = *Program(file)[u"all"]->configurations();
    ASSERT_EQ(members.size(), 2u);
    EXPECT_EQ(members[0]->name(), u"B");
    EXPECT_EQ(members[1]->name(), u"C");
}

TEST_F(Merging, TakesTheOrderOfTheOneThatMovedSomething) {
    one->move(u"a", 3);
    other->add(u"New");
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(), "");
    EXPECT_EQ(stored(), "B C A All New");
    Program third(file);
    third.move(u"all", 0);
    one->load();
    Program fourth(file);
    fourth.add(u"Newer");
    ASSERT_EQ(fourth.save(), "");
    ASSERT_EQ(third.save(), "");
    EXPECT_EQ(stored(), "All B C A New Newer");
}

TEST_F(Merging, OfTwoOrdersTakesTheOneThatIsSavedLast) {
    one->move(u"a", 3);
    other->move(u"c", 0);
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(), "");
    EXPECT_EQ(stored(), "C A B All");
}

TEST_F(Merging, AsksWhereBothChangedTheSameOneAndKeepsMine) {
    Answer answer{Choice::mine, {}};
    (*one)[u"a"]->setName(u"of one");
    (*other)[u"a"]->setName(u"of other");
    (*one)[u"b"]->setName(u"B2");
    ASSERT_EQ(one->save(answer.ask()), "");
    EXPECT_TRUE(answer.asked.empty());
    ASSERT_EQ(other->save(answer.ask()), "");
    EXPECT_EQ(answer.asked, std::vector<std::string>{"of other/of one"});
    EXPECT_EQ(stored(), "of other B2 C All");
}

TEST_F(Merging, AsksWhereBothChangedTheSameOneAndTakesTheirs) {
    Answer answer{Choice::theirs, {}};
    const auto shown = (*other)[u"a"];
    (*one)[u"a"]->setName(u"of one");
    (*other)[u"a"]->setName(u"of other");
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(answer.ask()), "");
    EXPECT_EQ(answer.asked.size(), 1u);
    EXPECT_EQ(stored(), "of one B C All");
    EXPECT_EQ(shown->name(), u"of one");
}

TEST_F(Merging, AsksWhereBothChangedTheSameOneAndKeepsBoth) {
    Answer answer{Choice::both, {}};
    (*one)[u"a"]->setName(u"Same");
    (*one)[u"a"]->setRotation(10);
    (*other)[u"a"]->setName(u"Same");
    (*other)[u"a"]->setRotation(20);
    ASSERT_EQ(one->save(), "");
    ASSERT_EQ(other->save(answer.ask()), "");
    Program now(file);
    EXPECT_EQ(now.names(), "Same Same copy B C All");
    EXPECT_EQ((*now.model.configurations())[0]->uniqueID(), u"a");
    EXPECT_EQ((*now.model.configurations())[0]->rotation(), 20);
    EXPECT_EQ((*now.model.configurations())[1]->rotation(), 10);
    EXPECT_EQ(other->names(), now.names());
}

TEST_F(Merging, WithoutAnAnswerSavesNothingAndNamesWhatIsContested) {
    (*one)[u"a"]->setName(u"of one");
    (*other)[u"a"]->setName(u"of other");
    (*other)[u"b"]->setName(u"B2");
    ASSERT_EQ(one->save(), "");
    const auto before = content();
    for (const store::Ask& ask : {store::Ask(), store::Ask([](const auto&) { return std::nullopt; })}) {
        const auto failure = other->store.save(other->model, ask);
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->code, Code::contested);
        EXPECT_NE(sentenceOf(failure).find("“of other”"), std::string::npos) << sentenceOf(failure);
        EXPECT_NE(sentenceOf(failure).find(file.string()), std::string::npos) << sentenceOf(failure);
    }
    EXPECT_EQ(content(), before);
    EXPECT_EQ(other->names(), "of other B2 C All");
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Merging, AsksAgainWhereTheOtherProgramWentOnMeanwhile) {
    (*one)[u"a"]->setName(u"first");
    (*other)[u"a"]->setName(u"of other");
    ASSERT_EQ(one->save(), "");
    std::vector<std::string> asked;
    const auto ask = [&](const store::Conflict& conflict) -> std::optional<Choice> {
        asked.push_back(platform::toUtf8(conflict.theirs));
        if (asked.size() == 1) {
            (*one)[u"a"]->setName(u"second");
            EXPECT_EQ(one->save(), "") << "others are not kept waiting";
        }
        return Choice::both;
    };
    ASSERT_EQ(other->save(ask), "");
    EXPECT_EQ(asked, (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(stored(), "of other second copy B C All");
}

TEST_F(Merging, TheSameChangeOnBothSidesIsNoConflict) {
    for (auto* program : {&*one, &*other})
        (*program)[u"a"]->setName(u"agreed");
    ASSERT_EQ(one->save(), "");
    EXPECT_EQ(other->save(), "");
    EXPECT_EQ(stored(), "agreed B C All");
}

TEST_F(Merging, ARotationThatWasOnlyRoundedIsNotAChange) {
    put(documentOf(R"({"uniqueID": "a", "name": "A", "rotation": 12.3}, {"uniqueID": "b", "name": "B"})"));
    Program first(file);
    Program second(file);
    first[u"a"]->setRotation(45);
    second[u"a"]->setRotation(double(12.3F));
    second[u"b"]->setName(u"B2");
    ASSERT_EQ(first.save(), "");
    EXPECT_EQ(second.save(), "");
    EXPECT_EQ(Program(file)[u"a"]->rotation(), 45);
    EXPECT_EQ(stored(), "A B2");
}

TEST_F(Merging, SavingWhatNobodyChangedWritesNothing) {
    const auto before = content();
    (*one)[u"a"]->setName(u"A");
    (*one)[u"b"]->setRotation(1e-60);
    EXPECT_EQ(one->save(), "");
    EXPECT_EQ(content(), before);
    EXPECT_FALSE(std::filesystem::exists(folder / "configurations.previous-1.json"));
    // And what others wrote comes in all the same.
    (*other)[u"a"]->setName(u"A2");
    ASSERT_EQ(other->save(), "");
    const auto theirs = content();
    EXPECT_EQ(one->save(), "");
    EXPECT_EQ(content(), theirs);
    EXPECT_EQ(one->names(), "A2 B C All");
}

TEST_F(Merging, AtTheFirstStartJoinsWhatTwoProgramsMadeOfTheSuppliedOnes) {
    std::filesystem::remove(file);
    Program first(file);
    Program second(file);
    (*first.model.configurations())[0]->setName(u"1st");
    (*second.model.configurations())[2]->setName(u"3rd");
    ASSERT_EQ(first.save(), "");
    ASSERT_EQ(second.save(), "");
    EXPECT_EQ(stored(), "1st Page of Pages 3rd");
}

TEST_F(Merging, KeepsKeysThatThisVersionDoesNotKnowFromEitherSide) {
    ASSERT_EQ(one->save(), "");
    put(R"({"format": "imprinter-configurations", "version": 1, "writtenBy": "a later one", "configurations": [
        {"uniqueID": "a", "name": "A", "watermark": "w", "titleTokens": [{"kerning": "tight"}]},
        {"uniqueID": "b", "name": "B"}, {"uniqueID": "new", "name": "New", "titleTokens": [{"kerning": "wide"}]}]})");
    (*one)[u"b"]->setName(u"B2");
    ASSERT_EQ(one->save(), "");
    (*one)[u"a"]->setName(u"A2");
    ASSERT_EQ(one->save(), "");
    for (const std::string kept : {"a later one", "watermark", "\"tight\"", "\"wide\"", "A2", "B2"})
        EXPECT_NE(content().find(kept), std::string::npos) << kept;
}

TEST_F(Merging, WithAFileThatWasBegunAnewTakesNothingAwayThatItLacks) {
    put(documentOf(R"({"uniqueID": "a", "name": "A"}, {"uniqueID": "b", "name": "B"})"));
    Program longOpen(file);
    // The first time there is no former version of the file yet.
    for (const bool damaged : {false, true, false}) {
        if (damaged)
            put(R"({"format": "imprinter-configurations", )");
        else
            std::filesystem::remove(file);
        store::Store fresh(file);
        model::ImprinterModel begun;
        begun.setConfigurations(fresh.load().configurations);
        begun.configurations()->front()->setName(u"Begun");
        ASSERT_EQ(sentenceOf(fresh.save(begun)), "");
        ASSERT_EQ(longOpen.save(), "");
        const auto names = " " + Program(file).names() + " ";
        for (const auto* name : {" A ", " B ", " Begun "})
            EXPECT_NE(names.find(name), std::string::npos) << names;
    }
}

TEST_F(Merging, WithWhatFitsAsItIsButNotAsItWouldBeWrittenLosesNothing) {
    // Written without spaces theirs may be read, but not written again.
    std::string theirs;
    for (int i = 0; i < 400; ++i)
        theirs += std::string(i ? "," : "") + R"({"uniqueID":"t)" + std::to_string(i) + R"(","name":"T"})";
    theirs = R"({"format":"imprinter-configurations","version":1,"configurations":[)" + theirs + "]}";
    store::Store small(file, theirs.size() + 1000);
    model::ImprinterModel model;
    model.setConfigurations(small.load().configurations);
    put(theirs);
    EXPECT_EQ(sentenceOf(small.save(model)), "") << "nothing was changed here";
    EXPECT_EQ(platform::count(model.configurations()), 400u);
    for (const char16_t* name : {u"changed", u"changed again"}) {
        (*model.configurations())[0]->setName(name);
        const auto failure = small.save(model);
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->code, Code::tooLarge);
        EXPECT_EQ(content(), theirs);
    }
}

TEST_F(Merging, DoesNotReplaceWhatItCannotUnderstand) {
    for (const std::string& text :
         {std::string("{ half a fi"), std::string(R"({"format": "imprinter-configurations", "version": 2})")}) {
        put(text);
        (*one)[u"a"]->setName(u"A2");
        const auto failure = one->store.save(one->model);
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->code, Code::changedElsewhere);
        EXPECT_NE(sentenceOf(failure).find(file.string()), std::string::npos);
        EXPECT_EQ(content(), text);
        EXPECT_TRUE(othersInFolder().empty());
    }
}

using Versions = Merging;

TEST_F(Versions, TheLastThreeStayBesideTheFile) {
    const auto original = content();
    std::vector<std::string> saved;
    for (const char16_t* name : {u"1", u"2", u"3", u"4", u"5"}) {
        (*one)[u"a"]->setName(name);
        ASSERT_EQ(one->save(), "");
        saved.push_back(content());
        if (saved.size() == 1) {
            EXPECT_EQ(readAll(store::Store(file).previousVersion(1)), original);
        }
    }
    for (int number = 1; number <= 3; ++number) {
        const auto version = store::Store(file).previousVersion(number);
        EXPECT_EQ(version, folder / ("configurations.previous-" + std::to_string(number) + ".json"));
        EXPECT_EQ(readAll(version), saved[4 - static_cast<std::size_t>(number)]);
        struct stat status {};
        ASSERT_EQ(::stat(version.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600u);
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "configurations.previous-4.json"));
    EXPECT_EQ(Program(store::Store(file).previousVersion(3)).names(), "2 B C All") << "each is a file of its own";
}

TEST_F(Versions, AreNotKeptOfWhatIsGivenAway) {
    one->store.keepNoVersions();
    (*one)[u"a"]->setName(u"A2");
    ASSERT_EQ(one->save(), "");
    EXPECT_FALSE(std::filesystem::exists(folder / "configurations.previous-1.json"));
}

TEST_F(Versions, WhatCannotBeKeptIsNoReasonNotToSave) {
    std::filesystem::create_directory(folder / "configurations.previous-1.json");
    std::filesystem::create_directory(folder / "configurations.previous-2.json");
    const std::ofstream something(folder / "configurations.previous-2.json" / "in the way");
    (*one)[u"a"]->setName(u"A2");
    EXPECT_EQ(one->save(), "");
    EXPECT_EQ(stored(), "A2 B C All");
    EXPECT_TRUE(othersInFolder().empty());
}

class Unsaved : public Merging {
protected:
    std::vector<std::string> journals() const {
        std::vector<std::string> names;
        for (const auto& name : othersInFolder())
            if (name.starts_with(".configurations.json.unsaved-"))
                names.push_back(name);
        return names;
    }
    /// The program is gone without having saved.
    void end(std::optional<Program>& program) {
        EXPECT_FALSE(program->store.keepUnsaved(program->model));
        program.reset();
    }
};

TEST_F(Unsaved, ChangesAreOfferedToTheNextProgramAndChangeTheFileOnlyWhenSaved) {
    const auto before = content();
    (*one)[u"a"]->setName(u"A2");
    one->remove(u"b");
    one->add(u"New");
    end(one);
    EXPECT_EQ(content(), before);
    Program next(file);
    auto found = next.store.findUnsaved();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].configurations, 4u) << "the combined one lost a member";
    EXPECT_EQ(sentenceOf(next.store.takeOver(found[0], next.model)), "");
    EXPECT_EQ(next.names(), "A2 C All New");
    EXPECT_EQ(content(), before);
    EXPECT_EQ(journals().size(), 1u) << "it is this program's now";
    found.clear();
    EXPECT_TRUE(Program(file).store.findUnsaved().empty());
    ASSERT_EQ(next.save(), "");
    EXPECT_EQ(stored(), "A2 C All New");
    EXPECT_TRUE(journals().empty());
}

TEST_F(Unsaved, ChangesSurviveTheNextProgramToo) {
    (*one)[u"a"]->setName(u"A2");
    end(one);
    {
        Program next(file);
        ASSERT_EQ(sentenceOf(next.store.takeOver(next.store.findUnsaved().at(0), next.model)), "");
    }
    Program afterThat(file);
    const auto found = afterThat.store.findUnsaved();
    ASSERT_EQ(found.size(), 1u);
    ASSERT_EQ(sentenceOf(afterThat.store.takeOver(found[0], afterThat.model)), "");
    EXPECT_EQ(afterThat.names(), "A2 B C All");
}

TEST_F(Unsaved, ChangesOfAProgramThatRunsAreNotOffered) {
    (*one)[u"a"]->setName(u"A2");
    ASSERT_FALSE(one->store.keepUnsaved(one->model));
    (*one)[u"a"]->setName(u"A3");
    ASSERT_FALSE(one->store.keepUnsaved(one->model));
    EXPECT_EQ(journals().size(), 1u);
    EXPECT_TRUE(other->store.findUnsaved().empty());
    (*other)[u"b"]->setName(u"B2");
    ASSERT_FALSE(other->store.keepUnsaved(other->model));
    EXPECT_EQ(journals().size(), 2u);
    one.reset();
    other.reset();
    EXPECT_EQ(Program(file).store.findUnsaved().size(), 2u);
}

TEST_F(Unsaved, JournalsGoWhenThereIsNothingLeftToSave) {
    ASSERT_FALSE(one->store.keepUnsaved(one->model));
    EXPECT_TRUE(othersInFolder().empty());
    (*one)[u"a"]->setName(u"A2");
    ASSERT_FALSE(one->store.keepUnsaved(one->model));
    EXPECT_EQ(othersInFolder().size(), 1u);
    (*one)[u"a"]->setName(u"A");
    ASSERT_FALSE(one->store.keepUnsaved(one->model));
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Unsaved, ChangesAreJoinedWithWhatWasSavedSince) {
    Answer answer{Choice::theirs, {}};
    (*one)[u"a"]->setName(u"of one");
    (*one)[u"b"]->setName(u"B2");
    end(one);
    (*other)[u"a"]->setName(u"of other");
    other->remove(u"c");
    ASSERT_EQ(other->save(), "");
    Program next(file);
    const auto found = next.store.findUnsaved().at(0);
    const auto failure = next.store.takeOver(found, next.model);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::contested);
    EXPECT_EQ(journals().size(), 1u);
    ASSERT_EQ(sentenceOf(next.store.takeOver(found, next.model, answer.ask())), "");
    EXPECT_EQ(answer.asked, std::vector<std::string>{"of one/of other"});
    EXPECT_EQ(next.names(), "of other B2 All");
}

TEST_F(Unsaved, AJournalIsOfferedToOneProgramAtATime) {
    (*one)[u"a"]->setName(u"A2");
    end(one);
    Program first(file);
    Program second(file);
    {
        const auto offered = first.store.findUnsaved();
        ASSERT_EQ(offered.size(), 1u);
        EXPECT_TRUE(second.store.findUnsaved().empty());
        EXPECT_FALSE(second.store.hasUnsaved());
    }
    EXPECT_TRUE(second.store.hasUnsaved());
    const auto offered = second.store.findUnsaved();
    ASSERT_EQ(offered.size(), 1u) << "the first left it for later";
    EXPECT_TRUE(first.store.findUnsaved().empty());
    ASSERT_EQ(sentenceOf(second.store.takeOver(offered[0], second.model)), "");
    EXPECT_EQ(journals().size(), 1u);
    EXPECT_TRUE(first.store.findUnsaved().empty());
}

TEST_F(Unsaved, WithoutAClaimNothingIsTakenOverOrDiscarded) {
    (*one)[u"a"]->setName(u"A2");
    end(one);
    auto found = other->store.findUnsaved().at(0);
    found.claim.reset();
    EXPECT_TRUE(other->store.takeOver(found, other->model));
    other->store.discard(found);
    EXPECT_EQ(journals().size(), 1u);
    EXPECT_EQ(other->names(), "A B C All");
}

TEST_F(Unsaved, AJournalWhoseChangesWereSavedSinceIsDropped) {
    (*one)[u"a"]->setName(u"A2");
    (*one)[u"b"]->setRotation(12.3);
    one->remove(u"c");
    end(one);
    (*other)[u"a"]->setName(u"A2");
    (*other)[u"b"]->setRotation(double(12.3F));
    other->remove(u"c");
    ASSERT_EQ(other->save(), "");
    EXPECT_FALSE(store::Store(file).hasUnsaved());
    EXPECT_EQ(journals().size(), 1u) << "who only looks removes nothing";
    EXPECT_TRUE(Program(file).store.findUnsaved().empty());
    EXPECT_TRUE(journals().empty());
}

TEST_F(Unsaved, OfAJournalOnlyWhatStillDiffersIsOffered) {
    (*one)[u"a"]->setName(u"A2");
    (*one)[u"b"]->setName(u"B2");
    one->move(u"c", 0);
    end(one);
    (*other)[u"a"]->setName(u"A2");
    ASSERT_EQ(other->save(), "");
    EXPECT_TRUE(store::Store(file).hasUnsaved());
    Program next(file);
    {
        const auto found = next.store.findUnsaved();
        ASSERT_EQ(found.size(), 1u);
        EXPECT_EQ(found[0].configurations, 1u);
    }
    (*next.model.configurations())[1]->setName(u"B2");
    ASSERT_EQ(next.save(), "");
    const auto found = next.store.findUnsaved();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].configurations, 0u) << "only the order is left";
    ASSERT_EQ(sentenceOf(next.store.takeOver(found[0], next.model)), "");
    EXPECT_EQ(next.names(), "C A2 B2 All");
}

TEST_F(Unsaved, AMemberThatWasDeletedSinceComesBackWithWhatItWasPutInto) {
    (*one)[u"all"]->addConfiguration((*one)[u"c"]);
    end(one);
    other->remove(u"c");
    ASSERT_EQ(other->save(), "");
    Program next(file);
    const auto found = next.store.findUnsaved();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].configurations, 2u) << "the combined one, and the member that comes back";
    ASSERT_EQ(sentenceOf(next.store.takeOver(found[0], next.model)), "");
    EXPECT_EQ(told(next), std::vector<std::string>{
                              "“C” was deleted since and put into “All” before the program ended; it was kept."});
    ASSERT_EQ(next.save(), "");
    EXPECT_EQ(members(), "A B C");
}

TEST_F(Unsaved, ChangesThatNobodyWantsAreDiscarded) {
    (*one)[u"a"]->setName(u"A2");
    end(one);
    other->store.discard(other->store.findUnsaved().at(0));
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Unsaved, WhatIsNoJournalIsNotOffered) {
    const auto leave = [&](const std::string& name, const std::string& text) { std::ofstream(folder / name) << text; };
    leave(".configurations.json.unsaved-aaaaaa", "half a journ");
    leave(".configurations.json.unsaved-bbbbbb",
          R"({"format": "imprinter-unsaved-changes", "version": 2, "before": {}, "after": {}})");
    leave(".configurations.json.unsaved-cccccc", "");
    leave(".configurations.json.unsaved-dddd", "{}");
    std::filesystem::create_symlink(file, folder / ".configurations.json.unsaved-eeeeee");
    EXPECT_TRUE(one->store.findUnsaved().empty());
    EXPECT_EQ(othersInFolder().size(), 4u) << "only the empty one is known to hold nothing";
    (*one)[u"a"]->setName(u"A2");
    end(one);
    const auto found = other->store.findUnsaved();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_FALSE(found[0].journal.filename().string().ends_with("eeeeee"));
}

TEST_F(Unsaved, ChangesAreLeftForLaterWhereNothingCanBeSaved) {
    (*one)[u"a"]->setName(u"A2");
    end(one);
    const auto original = content();
    auto found = other->store.findUnsaved().at(0);
    put(R"({"format": "imprinter-configurations", "version": 2})");
    store::Store newer(file);
    model::ImprinterModel model;
    model.setConfigurations(newer.load().configurations);
    EXPECT_TRUE(newer.findUnsaved().empty());
    const auto failure = newer.takeOver(found, model);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::readOnly);
    EXPECT_EQ(journals().size(), 1u);
    found.claim.reset();
    put(original);
    Program next(file);
    ASSERT_EQ(sentenceOf(next.store.takeOver(next.store.findUnsaved().at(0), next.model)), "");
    EXPECT_EQ(next.names(), "A2 B C All");
}

TEST_F(Unsaved, ChangesAreTheUsersAlone) {
    const auto old = ::umask(0);
    (*one)[u"a"]->setName(u"A2");
    EXPECT_FALSE(one->store.keepUnsaved(one->model));
    ::umask(old);
    struct stat status {};
    ASSERT_EQ(::stat((folder / journals().at(0)).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

} // namespace
