#!/usr/bin/env python3
"""Makes plural_expressions.h, the rules of languages as the header "Plural-Forms" of a PO file has them.

    make_plural_expressions.py ../../src/plural/plural_table.h >plural_expressions.h

The rules are those of the library's table, as far as they concern integers; categories that no integer has are left
out. A language is found by what its rules say, so the rows have no names.
"""

import re
import sys
import textwrap

ORDER = ["zero", "one", "two", "few", "many", "other"]
NUMBERS = list(range(1200)) + [n * 1000 for n in range(1, 1200)]
NUMBERS += [1000000 * n + k for n in range(1, 4) for k in range(130)]


def relation(text):
    """One comparison, of an integer: its C, or True or False where that is known."""
    operand, operator, values = re.fullmatch(r"(\w(?: % \d+)?) (!?=) (.*)", " ".join(text.split())).groups()
    isNegative = operator == "!="
    if operand[0] in "vftwec":
        has_zero = any(value in ("0", "0..5") for value in values.split(","))
        return has_zero != isNegative
    operand = operand.replace(" ", "").replace("i", "n")
    parts = []
    for value in values.split(","):
        low, _, high = value.partition("..")
        if not high:
            parts.append(f"{operand}!={low}" if isNegative else f"{operand}=={low}")
        elif low == "0":
            parts.append(f"{operand}>{high}" if isNegative else f"{operand}<={high}")
        elif isNegative:
            parts.append(f"({operand}<{low} || {operand}>{high})")
        else:
            parts.append(f"({operand}>={low} && {operand}<={high})")
    if len(parts) == 1:
        return parts[0]
    return " && ".join(parts) if isNegative else "(" + " || ".join(parts) + ")"


def condition(text):
    """A rule as C; None where no integer meets it."""
    alternatives = []
    for alternative in text.split(" or "):
        terms = [relation(term) for term in alternative.split(" and ")]
        if False in terms:
            continue
        terms = [term for term in terms if term is not True]
        alternatives.append(" && ".join(terms) if terms else "1")
    if not alternatives:
        return None
    return alternatives[0] if len(alternatives) == 1 else " || ".join(
        f"({a})" if "&&" in a else a for a in alternatives)


def evaluate(conditions, number):
    for category, code in conditions:
        if eval(code, {"n": number}):  # pylint: disable=eval-used
            return category
    return "other"


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        table = re.sub(r"(// \w+: .*)\n *// +(?!\w+: )", r"\1 ", file.read())
    rows = []
    for block in re.split(r"\n    case PluralRule::", table)[1:]:
        if not block.startswith(("cardinal", "alwaysOther")):
            continue
        rules = re.findall(r"// (zero|one|two|few|many): (.*)", block)
        conditions = [(category, condition(rule)) for category, rule in rules]
        conditions = [(category, code) for category, code in conditions if code]
        python = [(category, code.replace("&&", "and").replace("||", "or")) for category, code in conditions]
        reached = {evaluate(python, number) for number in NUMBERS}
        categories = [category for category in ORDER if category in reached]
        conditions = [row for row in conditions if row[0] in reached]
        expression = ""
        for category, code in conditions:
            if category == categories[-1] and category == conditions[-1][0] and "other" not in reached:
                break
            expression += f"{code} ? {categories.index(category)} : "
        expression += str(len(categories) - 1)
        row = (" ".join(categories), expression)
        if row not in rows:
            rows.append(row)
    print('''/**
 * The rules of the languages for integers, as PO files have them; made by make_plural_expressions.py, not to be edited.
 */
#ifndef KELTO_TOOLS_BILINGUAL_PLURAL_EXPRESSIONS_H
#define KELTO_TOOLS_BILINGUAL_PLURAL_EXPRESSIONS_H

// clang-format off
namespace tool::bilingual
{

struct PluralExpression
{
    const char *categories; // in their order, each the number of its place
    const char *expression;
};

constexpr PluralExpression pluralExpressions[] = {''')
    for categories, expression in rows:
        literals = "\n     ".join(f'"{part}"' for part in textwrap.wrap(expression + " ", 100, drop_whitespace=False))
        print(f'    {{"{categories}",\n     {literals}}},'.replace(' "}', '"}'))
    print('''};

} // namespace tool::bilingual

#endif''')


if __name__ == "__main__":
    main()
