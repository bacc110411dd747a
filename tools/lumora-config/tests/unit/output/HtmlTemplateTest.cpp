#include "output/HtmlTemplate.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace lumora_config {

using nlohmann::json;

TEST(HtmlTemplate, EscapesEveryField) {
    EXPECT_EQ(HtmlTemplate("<a title=\"{{t}}\">{{t}}</a>").render({{"t", "<\"&'>"}}),
              "<a title=\"&lt;&quot;&amp;&#39;&gt;\">&lt;&quot;&amp;&#39;&gt;</a>");
}

TEST(HtmlTemplate, TextOfAFieldIsNotReadAsATemplate) {
    EXPECT_EQ(HtmlTemplate("{{a}}").render({{"a", "{{b}}"}, {"b", "x"}}), "{{b}}");
}

TEST(HtmlTemplate, RepeatsASectionForEachItem) {
    EXPECT_EQ(HtmlTemplate("{{#l}}[{{n}}{{#tags}} {{.}}{{/tags}}]{{/l}}")
                  .render({{"l", {{{"n", 1}, {"tags", {"x", "y"}}}, {{"n", 2}, {"tags", json::array()}}}}}),
              "[1 x y][2]");
}

TEST(HtmlTemplate, ShowsTheInvertedSectionInPlaceOfTheOther) {
    const HtmlTemplate page("{{#f}}yes{{/f}}{{^f}}no{{/f}}");
    for (const json& empty : {json(false), json(""), json::array()}) {
        EXPECT_EQ(page.render({{"f", empty}}), "no") << empty;
    }
    for (const json& full : {json(true), json("x"), json({{"a", 1}}), json(0)}) {
        EXPECT_EQ(page.render({{"f", full}}), "yes") << full;
    }
}

TEST(HtmlTemplate, LooksForAFieldFromTheInsideOut) {
    EXPECT_EQ(HtmlTemplate("{{#o}}{{a}}{{b}}{{/o}}").render({{"a", "outer"}, {"b", "B"}, {"o", {{"a", "A"}}}}), "AB");
}

TEST(HtmlTemplate, KeepsSectionsOfOneNameApart) {
    EXPECT_EQ(HtmlTemplate("{{#a}}({{#a}}x{{/a}}){{/a}}").render({{"a", true}}), "(x)");
}

TEST(HtmlTemplate, RefusesWhatIsMalformed) {
    for (const auto* broken : {"{{absent}}", "{{#a}}", "{{/a}}", "{{a", "{{}}", "{{#a}}{{/b}}"}) {
        EXPECT_THROW(HtmlTemplate(broken).render({{"a", true}}), std::logic_error) << broken;
    }
}

} // namespace lumora_config
