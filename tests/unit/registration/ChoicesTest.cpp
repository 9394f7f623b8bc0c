#include "registration/Choices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Lumora::Choices;
using Lumora::Choose;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(RegistrationChoices, TakeExtensionsInAnySpelling)
{
    Choices choices;
    EXPECT_FALSE(Choose(choices, L"WITHOUT", L".h5, MAP;.Mrc  h5"));
    EXPECT_THAT(choices.leftOut, ElementsAre(L".h5", L".map", L".mrc"));
    EXPECT_FALSE(Choose(choices, L"WITHOUT", L"none"));
    EXPECT_THAT(choices.leftOut, IsEmpty());
    EXPECT_FALSE(Choose(choices, L"WITH", L"hdf5"));
    EXPECT_THAT(choices.withProperties, ElementsAre(L".hdf5"));
}

TEST(RegistrationChoices, RefuseWhatIsNoChoice)
{
    Choices choices = {.leftOut = {L".map"}};
    EXPECT_EQ(Choose(choices, L"WITHOUT", L".h5,.png"),
              L"the extension .png cannot be left out: Lumora never registers it");
    EXPECT_EQ(Choose(choices, L"WITH", L".h5,.emd"),
              L"properties cannot be chosen for the extension .emd: they are always registered");
    EXPECT_EQ(Choose(choices, L"WITH", L"raw"),
              L"properties cannot be chosen for the extension .raw: Lumora never registers it");
    EXPECT_EQ(Choose(choices, L"PICTURES", L"no"), L"the choice is 0 or 1, and not \"no\"");
    EXPECT_EQ(Choose(choices, L"PHOTOVIEWER", L"01"), L"the choice is 0 or 1, and not \"01\"");
    EXPECT_EQ(Choose(choices, L"WITHIN", L"1"), L"there is no choice WITHIN");
    EXPECT_EQ(choices, Choices{.leftOut = {L".map"}});
}

TEST(RegistrationChoices, GiveBackWhatTheyHaveTaken)
{
    const Choices all = {.leftOut = {L".map", L".st"},
                         .withProperties = {L".h5"},
                         .arePictures = false,
                         .areInPhotoViewer = true};
    Choices copy;
    for (const Lumora::Choice& choice : Lumora::AllChoices())
        EXPECT_FALSE(choice.take(copy, choice.valueIn(all)));
    EXPECT_EQ(copy, all);
    for (const Lumora::Choice& choice : Lumora::AllChoices())
        EXPECT_FALSE(choice.take(copy, choice.valueIn({})));
    EXPECT_EQ(copy, Choices{});
}

TEST(RegistrationChoices, AreDescribedWhereTheyAreNotTheUsualOnes)
{
    EXPECT_THAT(Lumora::Describe(Choices{}), IsEmpty());
    EXPECT_THAT(Lumora::Describe({.leftOut = {L".map", L".st"},
                                  .withProperties = {L".h5"},
                                  .arePictures = false,
                                  .areInPhotoViewer = true}),
                ElementsAre(L"Left out: .map,.st", L"With properties: .h5", L"Not taken for pictures",
                            L"Offered in Windows Photo Viewer"));
}

} // namespace
