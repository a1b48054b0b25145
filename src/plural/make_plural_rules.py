#!/usr/bin/env python3
"""Writes plural_table.h, the plural and ordinal rules of the languages, from CLDR's data.

    npm pack cldr-core && tar xzf cldr-core-*.tgz
    src/plural/make_plural_rules.py package >src/plural/plural_table.h

What the rules say in CLDR's words stands beside what they became, so that each can be read against the file. Conditions
on the compact exponent (e, c) are decided here: a number is never shown as "1.2 million" by us, so it is always 0."""

import json
import pathlib
import re
import sys
import textwrap

CATEGORIES = ['zero', 'one', 'two', 'few', 'many']
EXPONENTS = ('e', 'c')

HEAD = '''\
/**
 * The plural and ordinal rules of the languages, made by make_plural_rules.py from CLDR %s; not to be edited. The data
 * is Unicode's: see packaging/copyright. plural_rules.cpp alone includes this.
 */
#ifndef KELTO_PLURAL_PLURAL_TABLE_H
#define KELTO_PLURAL_PLURAL_TABLE_H

#include "plural/plural_operands.h"

// clang-format off
namespace kelto::plural_table
{

'''

TAIL = '''\
} // namespace kelto::plural_table
// clang-format on

#endif'''

WIDTH = 120


def relation(text):
    """One relation as C++, or True or False where it is decided."""
    match = re.fullmatch(r'([niftvec])((?: % \d+)?) (!?=) ([\d.,]+)', text)
    if not match:
        sys.exit(f'cannot read the relation "{text}"')
    operand, modulus, sign, ranges = match.groups()
    parts = [part.split('..') for part in ranges.split(',')]
    if operand in EXPONENTS:
        return any(int(part[0]) <= 0 <= int(part[-1]) for part in parts) == (sign == '=')
    sets = [part[0] if len(part) == 1 else f'Range{{{part[0]}, {part[1]}}}' for part in parts]
    return f'{"is" if sign == "=" else "isNot"}({operand}{modulus}, {", ".join(sets)})'


def condition_of(text):
    """The clauses of a condition that are not decided, or True or False for the whole."""
    clauses = []
    for clause in text.split(' or '):
        relations = [relation(part) for part in clause.split(' and ')]
        if False in relations:
            continue
        relations = [part for part in relations if part is not True]
        if not relations:
            return True
        clauses.append(relations)
    if len(clauses) > 1:
        return [f'({" && ".join(relations)})' if len(relations) > 1 else relations[0] for relations in clauses]
    return [' && '.join(relations) for relations in clauses] or False


def name_of(kind, language):
    return kind + ''.join(part.capitalize() for part in language.split('-'))


def read(folder, name):
    return json.loads((folder / 'supplemental' / name).read_text(encoding='utf-8'))['supplemental']


def rules_of(data, kind):
    for language, rules in data[f'plurals-type-{kind}'].items():
        texts = {name.rsplit('-', 1)[1]: text.split('@')[0].strip() for name, text in rules.items()}
        yield language, tuple((category, texts[category]) for category in CATEGORIES if category in texts)


class Tables:
    """The distinct rules in the order of their first language, and what each language has of them."""

    def __init__(self, folder):
        cardinals, ordinals = read(folder, 'plurals.json'), read(folder, 'ordinals.json')
        self.version = cardinals['version']['_cldrVersion']
        self.names, self.users, self.rows, self.models = {(): 'alwaysOther'}, {(): []}, {}, {}
        for place, (kind, data) in enumerate((('cardinal', cardinals), ('ordinal', ordinals))):
            for language, rule in rules_of(data, kind):
                self.users.setdefault(rule, []).append(f'{language} ({kind[0]})')
                name = self.names.setdefault(rule, name_of(kind, language))
                self.rows.setdefault(language, ['alwaysOther', 'alwaysOther'])[place] = name
        for language, row in self.rows.items():  # what a variant of a language has no rule for is the language's
            base = self.rows[language.split('-')[0]]
            row[1] = base[1] if row[1] == 'alwaysOther' else row[1]
        self.add_parents(read(folder, 'parentLocales.json'))
        self.add_aliases(read(folder, 'aliases.json'))

    def add_parents(self, data):
        """Regions whose texts are those of another region, as Angola's Portuguese is Portugal's."""
        for child, parent in data['parentLocales']['parentLocale'].items():
            if '-' in parent and parent in self.rows and child not in self.rows:
                self.copy(child, parent)

    def add_aliases(self, data):
        """Other codes of a language: deprecated, or of three letters where there is one of two."""
        for code, alias in data['metadata']['alias']['languageAlias'].items():
            language = re.split('[-_]', alias['_replacement'])[0]
            if len(code) <= 3 and code not in self.rows and language in self.rows:
                self.copy(code, language)

    def copy(self, code, model):
        self.rows[code], self.models[code] = self.rows[model], model

    def codes(self, length):
        return sorted(code for code in self.rows if len(code) == length)

    def regions(self):
        """Those of a language that differ from it."""
        return sorted(code for code in self.rows if '-' in code and self.rows[code] != self.rows[code.split('-')[0]])


def write_rules(tables):
    print('enum class PluralRule : uint8_t\n{')
    print(',\n'.join(f'    {name}' for name in tables.names.values()))
    print('};\n\ninline int categoryBy(PluralRule rule, uint64_t integer,'
          ' uint64_t shown, uint64_t fraction, uint64_t trimmed)')
    print('{\n    // NOLINTNEXTLINE(readability-isolate-declaration): the names that the rules have')
    print('    const PluralOperand n{integer, trimmed == 0}, i{integer}, v{shown}, f{fraction}, t{trimmed};')
    print('    switch (rule)\n    {')
    for rule, name in tables.names.items():
        print(f'    case PluralRule::{name}:')
        users = tables.users[rule]
        print('        // ' + ' '.join(users[:6]) + (' ...' if len(users) > 6 else ''))
        for category, text in rule:
            condition = condition_of(text)
            comment = f'        // {category}: '
            print(textwrap.fill(text, WIDTH, initial_indent=comment, subsequent_indent='        //     '))
            if condition is not False:
                print(f'        if ({" ||NL            ".join(condition)})'.replace('NL', '\n'))
                print(f'            return KT_VARIANT_{category.upper()};')
        print('        break;')
    print('    }\n    return KT_VARIANT_OTHER;\n}\n')


def write_languages(tables, array, codes):
    print(f'inline constexpr PluralLanguage<PluralRule> {array}[] = {{')
    for code in codes:
        language, _, region = code.partition('-')
        cardinal, ordinal = tables.rows[code]
        print(f'    {{"{language}", "{region}", PluralRule::{cardinal}, PluralRule::{ordinal}}},' +
              (f' // as {tables.models[code]}' if code in tables.models else ''))
    print('};\n')


def main():
    tables = Tables(pathlib.Path(sys.argv[1]))
    print(HEAD % tables.version, end='')
    write_rules(tables)
    print('// Each array is in the order of its codes.\n')
    write_languages(tables, 'twoLetters', tables.codes(2))
    write_languages(tables, 'threeLetters', tables.codes(3))
    write_languages(tables, 'regions', tables.regions())
    print(TAIL)


main()
