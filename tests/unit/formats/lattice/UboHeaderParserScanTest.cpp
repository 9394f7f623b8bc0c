#include "support/ParsedHeader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <string>

using namespace Tav::Imaging::RawImage;
using testing::Contains;
using testing::IsEmpty;
using testing::Pair;

using Parameters = std::map<std::string, std::string>;

namespace {

struct MarkRow
{
    const char* announcement;
    const char* dataMark;
    /// Whether the data begin behind the last line.
    bool found;
};

TEST(LatticeHeader, FindsTheDataBehindTheFirstMarkAfterTheirAnnouncement)
{
    constexpr MarkRow rows[] = {
        {"# Data section follows", "@1", true},
        {"# data section follows", "@1", true},
        {"# DATA SECTION FOLLOWS", "@1", true},
        {" \t\v\f# Data section follows\t ", "  @1\t\v\f ", true},
        {"# Data section follows\n# Data section follows", "@1", true},
        {"# Data section follows\nanything\n\n@2\n@1 x", "@1", true},
        {"@1\n@1\n# Data section follows", "@1", true},
        {"# Data sections follow\n# Data section follows", "@1", true},
        {"# Data section follows", "", false},
        {"# Data section follows", "@2", false},
        {"# Data section follows", "@10", false},
        {"# Data section follows", "@ 1", false},
        {"# Data section follows", "x@1", false},
        {"# Data section follows", "@1(HxZip,5)", false},
        {"# Data section follows", "{@1", false},
        {"", "@1", false},
        {"@1", "# Data section follows", false},
        {"#Data section follows", "@1", false},
        {"# Data  section follows", "@1", false},
        {"# Data section follows:", "@1", false},
        {"x # Data section follows", "@1", false},
        {"# Data section", "@1", false},
        {"# Data section follows @1", "@1", false},
    };
    for (const MarkRow& row : rows)
    {
        const LatticeFile file = LatticeFile().Announcement(row.announcement).DataMark(row.dataMark);
        // What follows the header has marks too.
        const ParsedHeader parsed{file.Header() + "@1 "};
        EXPECT_TRUE(parsed.understood) << row.announcement << '\n' << row.dataMark;
        EXPECT_EQ(parsed.dataOffset, row.found ? file.Header().size() : 0U) << row.announcement << '\n'
                                                                            << row.dataMark;
    }
}

TEST(LatticeHeader, IsNotReadBehindTheMarkThatEndsIt)
{
    const std::string end = "# Data section follows\n@1\n";
    const std::string definition = "define Lattice 1 2 3\n";
    const std::string type = "Lattice { byte Data } @1\n";

    EXPECT_TRUE(ParsedHeader(definition + type + end + "@1\n").understood);
    EXPECT_EQ(ParsedHeader(definition + type + end + "@1\n").dataOffset, 72U);
    EXPECT_EQ(ParsedHeader(definition + type + end + end).dataOffset, 72U);
    EXPECT_FALSE(ParsedHeader(definition + end + type).understood);
    EXPECT_FALSE(ParsedHeader(type + end + definition).understood);
    EXPECT_TRUE(ParsedHeader("@1\n" + definition + "@1\n" + type).understood);
    // The announcement itself ends nothing.
    EXPECT_TRUE(ParsedHeader("# Data section follows\n" + definition + type + "@1\n").understood);
    EXPECT_EQ(ParsedHeader("# Data section follows\n" + definition + type + "@1\n").dataOffset, 72U);
}

TEST(LatticeHeader, IgnoresALineThatDoesNotEnd)
{
    const std::string definition = "define Lattice 1 2 3";
    const std::string type = "Lattice { byte Data } @1";
    const std::string end = "# Data section follows\n@1";

    EXPECT_FALSE(ParsedHeader(definition + "\n" + type).understood);
    EXPECT_FALSE(ParsedHeader(type + "\n" + definition).understood);
    EXPECT_FALSE(ParsedHeader(type + "\n" + definition + "      ").understood);
    EXPECT_TRUE(ParsedHeader(type + "\n" + definition + "\n").understood);
    EXPECT_EQ(ParsedHeader(type + "\n" + definition + "\n" + end).dataOffset, 0U);
    EXPECT_EQ(ParsedHeader(type + "\n" + definition + "\n" + end + "   ").dataOffset, 0U);
    EXPECT_EQ(ParsedHeader(type + "\n" + definition + "\n" + end + "\n").dataOffset, 72U);
}

TEST(LatticeHeader, CollectsTheParametersOfItsBlock)
{
    const ParsedHeader parsed{LatticeFile().Block("Parameters {\n"
                                                  "    Title \"gold on carbon\",\n"
                                                  "    Operator \"\",\n"
                                                  "  \tVoltage   300,\n"
                                                  "    Size 1.5 2 -3,\n"
                                                  "    Tilts \"-60, 60\"\n"
                                                  "    Note \" kept \"\n"
                                                  "    Path a \"b\" c\n"
                                                  "    Inches 5\"\n"
                                                  "    Mark \"\n"
                                                  "    Gaps 1,,\n"
                                                  "    Nothing ,\n"
                                                  "    Tabbed\t 7\n"
                                                  "\n"
                                                  "    Flag\n"
                                                  "    Tabs\t8\n"
                                                  "}\n"
                                                  "Outside 9")};
    EXPECT_TRUE(parsed.understood);
    // The line that opens the block is in it already, braces and all.
    EXPECT_EQ(parsed.parameters, (Parameters{{"Parameters", "{"},
                                             {"Title", "gold on carbon"},
                                             {"Operator", ""},
                                             {"Voltage", "300"},
                                             {"Size", "1.5 2 -3"},
                                             {"Tilts", "-60, 60"},
                                             {"Note", " kept "},
                                             {"Path", "a \"b\" c"},
                                             {"Inches", "5\""},
                                             {"Mark", "\""},
                                             {"Gaps", "1,"},
                                             {"Nothing", ""},
                                             {"Tabbed", "7"}}));
}

TEST(LatticeHeader, KnowsTheBlockByItsNameInAnyCase)
{
    for (const char* opening :
         {"Parameters {", "parameters {", "PARAMETERS{", " \t Parameters \v\f {", "PaRaMeTeRs { text"})
        EXPECT_THAT(ParsedHeader(LatticeFile().Block(std::string{opening} + "\nTitle 5\n}")).parameters,
                    Contains(Pair("Title", "5")))
            << opening;

    for (const char* opening : {"Parameter {", "Parameters2 {", "My Parameters {", "Parameters: {",
                                "Parameters\n{", "Parameters", "Parameters }", "{ Parameters", "Other {"})
        EXPECT_THAT(ParsedHeader(LatticeFile().Block(std::string{opening} + "\nTitle 5\n}")).parameters,
                    IsEmpty())
            << opening;
}

/// A file whose type line has no braces, so that a block behind it is structured too.
LatticeFile PlainFile()
{
    return LatticeFile().TypeLine("Lattice byte");
}

TEST(LatticeHeader, TakesLinesOfTheBlockForNothingElse)
{
    // Each of these lines has a name and a value, and so is a parameter.
    EXPECT_FALSE(ParsedHeader(PlainFile().Definition("Parameters {\ndefine Lattice 1 2 3\n}")).understood);
    EXPECT_FALSE(ParsedHeader(PlainFile().TypeLine("Parameters {\nLattice byte\n}")).understood);
    EXPECT_EQ(ParsedHeader(PlainFile().Announcement("Parameters {\n# Data section follows\n}")).dataOffset,
              0U);

    const ParsedHeader parsed{
        PlainFile().Magic("Parameters {\ndefine Lattice 9 9 9\nLattice float @1(HxZip,5)\n}").Size(4, 3, 2)};
    EXPECT_TRUE(parsed.understood);
    EXPECT_EQ(parsed.dimensionX, 4U);
    EXPECT_EQ(parsed.sampleType, PixelType::UInt8);
    EXPECT_FALSE(parsed.isCompressed);

    // A single word has no value.
    EXPECT_EQ(ParsedHeader(PlainFile().TypeLine("Parameters {\nLatticedouble\n}")).sampleType,
              PixelType::Double64);
    const LatticeFile markInside = PlainFile().Announcement("# Data section follows\nParameters {");
    EXPECT_EQ(ParsedHeader(markInside).dataOffset, markInside.Header().size());
}

TEST(LatticeHeader, TakesAnUnclosedBlockToTheEnd)
{
    const ParsedHeader parsed{PlainFile().Announcement("Parameters {\nTitle 5\n# Data section follows")};
    EXPECT_TRUE(parsed.understood);
    EXPECT_EQ(parsed.dataOffset, 0U);
    EXPECT_THAT(parsed.parameters, Contains(Pair("Title", "5")));

    EXPECT_FALSE(ParsedHeader(LatticeFile().Block("Parameters {")).understood);
    EXPECT_FALSE(ParsedHeader(LatticeFile().Block("Parameters {\nInner {\n}")).understood);
    EXPECT_TRUE(ParsedHeader(LatticeFile().Block("Parameters {\nInner {\n}\n}")).understood);
}

struct SectionRow
{
    const char* lines;
    /// Which of the lines "a 1", "b 2" and so on are parameters.
    const char* names;
};

TEST(LatticeHeader, CountsSectionsWithinTheFirstOutermostOne)
{
    constexpr SectionRow rows[] = {
        {"Parameters {\na 1\nInner {\nb 2\n}\nc 3\n}\nd 4", "abc"},
        {"Parameters {\na 1\nInner {\nMore {\nb 2\n}\n}\nc 3\n}\nd 4", "abc"},
        {"Parameters {\na 1\n} {\nb 2\n}", "a"},
        {"Parameters {\na 1\nb 2 }\nc 3", "a"},
        {"Parameters { a 1 }\nb 2", ""},
        {"Parameters { {\na 1\n}\nb 2\n}\nc 3", "ab"},
        {"Parameters {\na 1 {\nb 2 }\nc 3\n}\nd 4", "abc"},
        // The block in another section lasts until that is closed too.
        {"Outer {\na 1\nParameters {\nb 2\n}\nc 3\n}\nd 4", "bc"},
        {"{ Parameters {\na 1\n}\n}", ""},
        {"{\nParameters {\na 1\n}\n}", "a"},
        // Only the first outermost section counts.
        {"Parameters {\na 1\n}\nParameters {\nb 2\n}", "a"},
        {"Other {\na 1\n}\nParameters {\nb 2\n}", ""},
        {"{}\nParameters {\na 1\n}", ""},
        {"Other { }\nParameters {\na 1\n}", ""},
        // Closing nothing is nothing.
        {"}\nParameters {\na 1\n}\nb 2", "a"},
        {"}}}}\n}\nParameters {\na 1\n}\nb 2", "a"},
        {"} Parameters {\na 1\n}", ""},
    };
    for (const SectionRow& row : rows)
    {
        const ParsedHeader parsed{LatticeFile().Block(row.lines)};
        EXPECT_TRUE(parsed.understood) << row.lines;
        std::string names;
        for (const auto& [name, value] : parsed.parameters)
            if (name.size() == 1)
                names += name;
        EXPECT_EQ(names, row.names) << row.lines;
    }
    // The braces of the type line are a section as well, after which there is none.
    EXPECT_THAT(ParsedHeader(LatticeFile().Announcement("Parameters {\na 1\n}")).parameters, IsEmpty());
}

std::string Repeated(std::string_view piece, size_t length)
{
    std::string text;
    while (text.size() < length)
        text += piece;
    text.resize(length);
    return text;
}

/// What a text can consist of.
constexpr const char* pieces[] = {"{",
                                  "}",
                                  "{}",
                                  "}{",
                                  " ",
                                  " {",
                                  "{ ",
                                  " { } ",
                                  "\n",
                                  "\r\n",
                                  "a",
                                  "a ",
                                  "a b\n",
                                  "a b,\n",
                                  "{\n",
                                  "}\n",
                                  "\n{",
                                  "{a b\n",
                                  "Parameters",
                                  "Parameters{",
                                  "Parameters {\n",
                                  "Lattice",
                                  "Lattice\n",
                                  "Lattice @1",
                                  "Lattice @1(\n",
                                  "@1",
                                  "@1\n",
                                  "define Lattice ",
                                  "define Lattice 1 2\n",
                                  "# Data section follows\n",
                                  "\t",
                                  "\v \f",
                                  "\"",
                                  "\",\n",
                                  "(",
                                  ")",
                                  ",",
                                  "\xFF"};

TEST(LatticeHeader, OfAnyTextIsReadInTimeProportionalToItsLength)
{
    constexpr size_t most = 262143;
    const std::string spaces(most / 2, ' ');
    std::vector<std::string> texts;
    for (const char* piece : pieces)
        for (const char* start : {"", "Parameters {\n", "Lattice ", "Lattice @1(", "define Lattice ", "a "})
            texts.push_back(start + Repeated(piece, most));
    // Whitespace on either side of many braces, and many braces with whitespace between.
    texts.push_back(spaces + Repeated("{", most / 2));
    texts.push_back(spaces + Repeated("}", most / 2));
    texts.push_back(spaces + Repeated("{}", most / 2));
    texts.push_back(spaces + Repeated(" {", most / 2));
    texts.push_back("{" + spaces + Repeated("{ ", most / 2));
    texts.push_back("Parameters" + spaces + Repeated("{", most / 2));
    texts.push_back(Repeated("Parameters{", most / 2) + spaces + Repeated("{", most / 2));
    // As many different parameters as fit.
    std::string parameters = "Parameters {\n";
    for (int i = 0; parameters.size() < most; ++i)
        parameters += std::to_string(i) + " x\n";
    texts.push_back(parameters);

    for (const std::string& text : texts)
    {
        const std::clock_t start = std::clock();
        EXPECT_FALSE(ParsedHeader(text).understood) << text.substr(0, 30);
        const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        // Work in proportion to the square takes more than a minute, and else a hundredth of a second is
        // usual, a second under the sanitizers. There the clock counts the processor's time, which other
        // programs do not lengthen. On Windows it counts all time: only who is stopped for half a minute
        // fails.
        ASSERT_LT(seconds, 30) << text.substr(0, 30);
    }
}

TEST(LatticeHeader, MayHaveAnyLength)
{
    for (const size_t length : {size_t{262142}, size_t{262143}, size_t{262144}, size_t{5000000}})
        for (const char* filling : {" ", "a", "\n", "{"})
        {
            const std::string end = "\n# Data section follows\n@1\n";
            std::string text = "define Lattice 1 2 3\nLattice { byte Data } @1\n";
            text += Repeated(filling, length - text.size() - end.size()) + end;
            const ParsedHeader parsed{text};
            EXPECT_TRUE(parsed.understood) << length;
            EXPECT_EQ(parsed.dataOffset, length);
        }
}

TEST(LatticeHeader, MayHaveAnyByteChanged)
{
    const std::string whole = LatticeFile()
                                  .Size(40, 30, 20)
                                  .Block("Parameters {\n  Title \"gold\",\n  Inner {\n    a 1\n  }\n}")
                                  .TypeLine("Lattice { ushort Data } @1(HxZip,99)")
                                  .Header();
    ASSERT_TRUE(ParsedHeader(whole).isCompressed);
    size_t understood = 0;
    for (size_t place = 0; place < whole.size(); ++place)
        for (uint32_t value = 0; value < 256; ++value)
        {
            std::string text = whole;
            text[place] = static_cast<char>(value);
            const ParsedHeader parsed{text};
            EXPECT_LE(parsed.dataOffset, text.size()) << place;
            EXPECT_TRUE(!parsed.understood || parsed.sampleType != PixelType::Unknown) << place;
            understood += parsed.understood ? 1 : 0;
        }
    EXPECT_GT(understood, 0U);
    EXPECT_LT(understood, whole.size() * 256);
}

} // namespace
