/**
 * The plural and ordinal rules of the languages, made by make_plural_rules.py from CLDR 48; not to be edited. The data
 * is Unicode's: see packaging/copyright. plural_rules.cpp alone includes this.
 */
#ifndef KELTO_PLURAL_PLURAL_TABLE_H
#define KELTO_PLURAL_PLURAL_TABLE_H

#include "plural/plural_operands.h"

// clang-format off
namespace kelto::plural_table
{

enum class PluralRule : uint8_t
{
    alwaysOther,
    cardinalAf,
    cardinalAk,
    cardinalAm,
    cardinalAr,
    cardinalAst,
    cardinalBe,
    cardinalBlo,
    cardinalBr,
    cardinalBs,
    cardinalCa,
    cardinalCeb,
    cardinalCs,
    cardinalCy,
    cardinalDa,
    cardinalDsb,
    cardinalEs,
    cardinalFf,
    cardinalFr,
    cardinalGa,
    cardinalGd,
    cardinalGv,
    cardinalHe,
    cardinalIs,
    cardinalIu,
    cardinalKw,
    cardinalLag,
    cardinalLt,
    cardinalLv,
    cardinalMk,
    cardinalMo,
    cardinalMt,
    cardinalPl,
    cardinalPt,
    cardinalRu,
    cardinalSgs,
    cardinalShi,
    cardinalSi,
    cardinalSl,
    cardinalTzm,
    ordinalAs,
    ordinalAz,
    ordinalBe,
    ordinalBlo,
    ordinalCa,
    ordinalCy,
    ordinalEn,
    ordinalGd,
    ordinalGu,
    ordinalHu,
    ordinalIt,
    ordinalKa,
    ordinalKk,
    ordinalKok,
    ordinalKw,
    ordinalLij,
    ordinalMk,
    ordinalNe,
    ordinalOr,
    ordinalSq,
    ordinalSv,
    ordinalTk,
    ordinalUk
};

inline int categoryBy(PluralRule rule, uint64_t integer, uint64_t shown, uint64_t fraction, uint64_t trimmed)
{
    // NOLINTNEXTLINE(readability-isolate-declaration): the names that the rules have
    const PluralOperand n{integer, trimmed == 0}, i{integer}, v{shown}, f{fraction}, t{trimmed};
    switch (rule)
    {
    case PluralRule::alwaysOther:
        // bm (c) bo (c) dz (c) hnj (c) id (c) ig (c) ...
        break;
    case PluralRule::cardinalAf:
        // af (c) an (c) asa (c) az (c) bal (c) bem (c) ...
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalAk:
        // ak (c) bho (c) csw (c) guw (c) ln (c) mg (c) ...
        // one: n = 0..1
        if (is(n, Range{0, 1}))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalAm:
        // am (c) as (c) bn (c) doi (c) fa (c) gu (c) ...
        // one: i = 0 or n = 1
        if (is(i, 0) ||
            is(n, 1))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalAr:
        // ar (c) ars (c)
        // zero: n = 0
        if (is(n, 0))
            return KT_VARIANT_ZERO;
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // two: n = 2
        if (is(n, 2))
            return KT_VARIANT_TWO;
        // few: n % 100 = 3..10
        if (is(n % 100, Range{3, 10}))
            return KT_VARIANT_FEW;
        // many: n % 100 = 11..99
        if (is(n % 100, Range{11, 99}))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalAst:
        // ast (c) de (c) en (c) et (c) fi (c) fy (c) ...
        // one: i = 1 and v = 0
        if (is(i, 1) && is(v, 0))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalBe:
        // be (c)
        // one: n % 10 = 1 and n % 100 != 11
        if (is(n % 10, 1) && isNot(n % 100, 11))
            return KT_VARIANT_ONE;
        // few: n % 10 = 2..4 and n % 100 != 12..14
        if (is(n % 10, Range{2, 4}) && isNot(n % 100, Range{12, 14}))
            return KT_VARIANT_FEW;
        // many: n % 10 = 0 or n % 10 = 5..9 or n % 100 = 11..14
        if (is(n % 10, 0) ||
            is(n % 10, Range{5, 9}) ||
            is(n % 100, Range{11, 14}))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalBlo:
        // blo (c) cv (c) ksh (c)
        // zero: n = 0
        if (is(n, 0))
            return KT_VARIANT_ZERO;
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalBr:
        // br (c)
        // one: n % 10 = 1 and n % 100 != 11,71,91
        if (is(n % 10, 1) && isNot(n % 100, 11, 71, 91))
            return KT_VARIANT_ONE;
        // two: n % 10 = 2 and n % 100 != 12,72,92
        if (is(n % 10, 2) && isNot(n % 100, 12, 72, 92))
            return KT_VARIANT_TWO;
        // few: n % 10 = 3..4,9 and n % 100 != 10..19,70..79,90..99
        if (is(n % 10, Range{3, 4}, 9) && isNot(n % 100, Range{10, 19}, Range{70, 79}, Range{90, 99}))
            return KT_VARIANT_FEW;
        // many: n != 0 and n % 1000000 = 0
        if (isNot(n, 0) && is(n % 1000000, 0))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalBs:
        // bs (c) hr (c) sh (c) sr (c)
        // one: v = 0 and i % 10 = 1 and i % 100 != 11 or f % 10 = 1 and f % 100 != 11
        if ((is(v, 0) && is(i % 10, 1) && isNot(i % 100, 11)) ||
            (is(f % 10, 1) && isNot(f % 100, 11)))
            return KT_VARIANT_ONE;
        // few: v = 0 and i % 10 = 2..4 and i % 100 != 12..14 or f % 10 = 2..4 and f % 100 != 12..14
        if ((is(v, 0) && is(i % 10, Range{2, 4}) && isNot(i % 100, Range{12, 14})) ||
            (is(f % 10, Range{2, 4}) && isNot(f % 100, Range{12, 14})))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::cardinalCa:
        // ca (c) it (c) lld (c) pt-PT (c) scn (c) vec (c)
        // one: i = 1 and v = 0
        if (is(i, 1) && is(v, 0))
            return KT_VARIANT_ONE;
        // many: e = 0 and i != 0 and i % 1000000 = 0 and v = 0 or e != 0..5
        if (isNot(i, 0) && is(i % 1000000, 0) && is(v, 0))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalCeb:
        // ceb (c) fil (c) tl (c)
        // one: v = 0 and i = 1,2,3 or v = 0 and i % 10 != 4,6,9 or v != 0 and f % 10 != 4,6,9
        if ((is(v, 0) && is(i, 1, 2, 3)) ||
            (is(v, 0) && isNot(i % 10, 4, 6, 9)) ||
            (isNot(v, 0) && isNot(f % 10, 4, 6, 9)))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalCs:
        // cs (c) sk (c)
        // one: i = 1 and v = 0
        if (is(i, 1) && is(v, 0))
            return KT_VARIANT_ONE;
        // few: i = 2..4 and v = 0
        if (is(i, Range{2, 4}) && is(v, 0))
            return KT_VARIANT_FEW;
        // many: v != 0
        if (isNot(v, 0))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalCy:
        // cy (c)
        // zero: n = 0
        if (is(n, 0))
            return KT_VARIANT_ZERO;
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // two: n = 2
        if (is(n, 2))
            return KT_VARIANT_TWO;
        // few: n = 3
        if (is(n, 3))
            return KT_VARIANT_FEW;
        // many: n = 6
        if (is(n, 6))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalDa:
        // da (c)
        // one: n = 1 or t != 0 and i = 0,1
        if (is(n, 1) ||
            (isNot(t, 0) && is(i, 0, 1)))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalDsb:
        // dsb (c) hsb (c)
        // one: v = 0 and i % 100 = 1 or f % 100 = 1
        if ((is(v, 0) && is(i % 100, 1)) ||
            is(f % 100, 1))
            return KT_VARIANT_ONE;
        // two: v = 0 and i % 100 = 2 or f % 100 = 2
        if ((is(v, 0) && is(i % 100, 2)) ||
            is(f % 100, 2))
            return KT_VARIANT_TWO;
        // few: v = 0 and i % 100 = 3..4 or f % 100 = 3..4
        if ((is(v, 0) && is(i % 100, Range{3, 4})) ||
            is(f % 100, Range{3, 4}))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::cardinalEs:
        // es (c)
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // many: e = 0 and i != 0 and i % 1000000 = 0 and v = 0 or e != 0..5
        if (isNot(i, 0) && is(i % 1000000, 0) && is(v, 0))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalFf:
        // ff (c) hy (c) kab (c)
        // one: i = 0,1
        if (is(i, 0, 1))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalFr:
        // fr (c)
        // one: i = 0,1
        if (is(i, 0, 1))
            return KT_VARIANT_ONE;
        // many: e = 0 and i != 0 and i % 1000000 = 0 and v = 0 or e != 0..5
        if (isNot(i, 0) && is(i % 1000000, 0) && is(v, 0))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalGa:
        // ga (c)
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // two: n = 2
        if (is(n, 2))
            return KT_VARIANT_TWO;
        // few: n = 3..6
        if (is(n, Range{3, 6}))
            return KT_VARIANT_FEW;
        // many: n = 7..10
        if (is(n, Range{7, 10}))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalGd:
        // gd (c)
        // one: n = 1,11
        if (is(n, 1, 11))
            return KT_VARIANT_ONE;
        // two: n = 2,12
        if (is(n, 2, 12))
            return KT_VARIANT_TWO;
        // few: n = 3..10,13..19
        if (is(n, Range{3, 10}, Range{13, 19}))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::cardinalGv:
        // gv (c)
        // one: v = 0 and i % 10 = 1
        if (is(v, 0) && is(i % 10, 1))
            return KT_VARIANT_ONE;
        // two: v = 0 and i % 10 = 2
        if (is(v, 0) && is(i % 10, 2))
            return KT_VARIANT_TWO;
        // few: v = 0 and i % 100 = 0,20,40,60,80
        if (is(v, 0) && is(i % 100, 0, 20, 40, 60, 80))
            return KT_VARIANT_FEW;
        // many: v != 0
        if (isNot(v, 0))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalHe:
        // he (c)
        // one: i = 1 and v = 0 or i = 0 and v != 0
        if ((is(i, 1) && is(v, 0)) ||
            (is(i, 0) && isNot(v, 0)))
            return KT_VARIANT_ONE;
        // two: i = 2 and v = 0
        if (is(i, 2) && is(v, 0))
            return KT_VARIANT_TWO;
        break;
    case PluralRule::cardinalIs:
        // is (c)
        // one: t = 0 and i % 10 = 1 and i % 100 != 11 or t % 10 = 1 and t % 100 != 11
        if ((is(t, 0) && is(i % 10, 1) && isNot(i % 100, 11)) ||
            (is(t % 10, 1) && isNot(t % 100, 11)))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalIu:
        // iu (c) naq (c) sat (c) se (c) sma (c) smi (c) ...
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // two: n = 2
        if (is(n, 2))
            return KT_VARIANT_TWO;
        break;
    case PluralRule::cardinalKw:
        // kw (c)
        // zero: n = 0
        if (is(n, 0))
            return KT_VARIANT_ZERO;
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // two: n % 100 = 2,22,42,62,82 or n % 1000 = 0 and n % 100000 = 1000..20000,40000,60000,80000 or n != 0 and n %
        //     1000000 = 100000
        if (is(n % 100, 2, 22, 42, 62, 82) ||
            (is(n % 1000, 0) && is(n % 100000, Range{1000, 20000}, 40000, 60000, 80000)) ||
            (isNot(n, 0) && is(n % 1000000, 100000)))
            return KT_VARIANT_TWO;
        // few: n % 100 = 3,23,43,63,83
        if (is(n % 100, 3, 23, 43, 63, 83))
            return KT_VARIANT_FEW;
        // many: n != 1 and n % 100 = 1,21,41,61,81
        if (isNot(n, 1) && is(n % 100, 1, 21, 41, 61, 81))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalLag:
        // lag (c)
        // zero: n = 0
        if (is(n, 0))
            return KT_VARIANT_ZERO;
        // one: i = 0,1 and n != 0
        if (is(i, 0, 1) && isNot(n, 0))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalLt:
        // lt (c)
        // one: n % 10 = 1 and n % 100 != 11..19
        if (is(n % 10, 1) && isNot(n % 100, Range{11, 19}))
            return KT_VARIANT_ONE;
        // few: n % 10 = 2..9 and n % 100 != 11..19
        if (is(n % 10, Range{2, 9}) && isNot(n % 100, Range{11, 19}))
            return KT_VARIANT_FEW;
        // many: f != 0
        if (isNot(f, 0))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalLv:
        // lv (c) prg (c)
        // zero: n % 10 = 0 or n % 100 = 11..19 or v = 2 and f % 100 = 11..19
        if (is(n % 10, 0) ||
            is(n % 100, Range{11, 19}) ||
            (is(v, 2) && is(f % 100, Range{11, 19})))
            return KT_VARIANT_ZERO;
        // one: n % 10 = 1 and n % 100 != 11 or v = 2 and f % 10 = 1 and f % 100 != 11 or v != 2 and f % 10 = 1
        if ((is(n % 10, 1) && isNot(n % 100, 11)) ||
            (is(v, 2) && is(f % 10, 1) && isNot(f % 100, 11)) ||
            (isNot(v, 2) && is(f % 10, 1)))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalMk:
        // mk (c)
        // one: v = 0 and i % 10 = 1 and i % 100 != 11 or f % 10 = 1 and f % 100 != 11
        if ((is(v, 0) && is(i % 10, 1) && isNot(i % 100, 11)) ||
            (is(f % 10, 1) && isNot(f % 100, 11)))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalMo:
        // mo (c) ro (c)
        // one: i = 1 and v = 0
        if (is(i, 1) && is(v, 0))
            return KT_VARIANT_ONE;
        // few: v != 0 or n = 0 or n != 1 and n % 100 = 1..19
        if (isNot(v, 0) ||
            is(n, 0) ||
            (isNot(n, 1) && is(n % 100, Range{1, 19})))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::cardinalMt:
        // mt (c)
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // two: n = 2
        if (is(n, 2))
            return KT_VARIANT_TWO;
        // few: n = 0 or n % 100 = 3..10
        if (is(n, 0) ||
            is(n % 100, Range{3, 10}))
            return KT_VARIANT_FEW;
        // many: n % 100 = 11..19
        if (is(n % 100, Range{11, 19}))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalPl:
        // pl (c)
        // one: i = 1 and v = 0
        if (is(i, 1) && is(v, 0))
            return KT_VARIANT_ONE;
        // few: v = 0 and i % 10 = 2..4 and i % 100 != 12..14
        if (is(v, 0) && is(i % 10, Range{2, 4}) && isNot(i % 100, Range{12, 14}))
            return KT_VARIANT_FEW;
        // many: v = 0 and i != 1 and i % 10 = 0..1 or v = 0 and i % 10 = 5..9 or v = 0 and i % 100 = 12..14
        if ((is(v, 0) && isNot(i, 1) && is(i % 10, Range{0, 1})) ||
            (is(v, 0) && is(i % 10, Range{5, 9})) ||
            (is(v, 0) && is(i % 100, Range{12, 14})))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalPt:
        // pt (c)
        // one: i = 0..1
        if (is(i, Range{0, 1}))
            return KT_VARIANT_ONE;
        // many: e = 0 and i != 0 and i % 1000000 = 0 and v = 0 or e != 0..5
        if (isNot(i, 0) && is(i % 1000000, 0) && is(v, 0))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalRu:
        // ru (c) uk (c)
        // one: v = 0 and i % 10 = 1 and i % 100 != 11
        if (is(v, 0) && is(i % 10, 1) && isNot(i % 100, 11))
            return KT_VARIANT_ONE;
        // few: v = 0 and i % 10 = 2..4 and i % 100 != 12..14
        if (is(v, 0) && is(i % 10, Range{2, 4}) && isNot(i % 100, Range{12, 14}))
            return KT_VARIANT_FEW;
        // many: v = 0 and i % 10 = 0 or v = 0 and i % 10 = 5..9 or v = 0 and i % 100 = 11..14
        if ((is(v, 0) && is(i % 10, 0)) ||
            (is(v, 0) && is(i % 10, Range{5, 9})) ||
            (is(v, 0) && is(i % 100, Range{11, 14})))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalSgs:
        // sgs (c)
        // one: n % 10 = 1 and n % 100 != 11
        if (is(n % 10, 1) && isNot(n % 100, 11))
            return KT_VARIANT_ONE;
        // two: n = 2
        if (is(n, 2))
            return KT_VARIANT_TWO;
        // few: n != 2 and n % 10 = 2..9 and n % 100 != 11..19
        if (isNot(n, 2) && is(n % 10, Range{2, 9}) && isNot(n % 100, Range{11, 19}))
            return KT_VARIANT_FEW;
        // many: f != 0
        if (isNot(f, 0))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::cardinalShi:
        // shi (c)
        // one: i = 0 or n = 1
        if (is(i, 0) ||
            is(n, 1))
            return KT_VARIANT_ONE;
        // few: n = 2..10
        if (is(n, Range{2, 10}))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::cardinalSi:
        // si (c)
        // one: n = 0,1 or i = 0 and f = 1
        if (is(n, 0, 1) ||
            (is(i, 0) && is(f, 1)))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::cardinalSl:
        // sl (c)
        // one: v = 0 and i % 100 = 1
        if (is(v, 0) && is(i % 100, 1))
            return KT_VARIANT_ONE;
        // two: v = 0 and i % 100 = 2
        if (is(v, 0) && is(i % 100, 2))
            return KT_VARIANT_TWO;
        // few: v = 0 and i % 100 = 3..4 or v != 0
        if ((is(v, 0) && is(i % 100, Range{3, 4})) ||
            isNot(v, 0))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::cardinalTzm:
        // tzm (c)
        // one: n = 0..1 or n = 11..99
        if (is(n, Range{0, 1}) ||
            is(n, Range{11, 99}))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::ordinalAs:
        // as (o) bn (o)
        // one: n = 1,5,7,8,9,10
        if (is(n, 1, 5, 7, 8, 9, 10))
            return KT_VARIANT_ONE;
        // two: n = 2,3
        if (is(n, 2, 3))
            return KT_VARIANT_TWO;
        // few: n = 4
        if (is(n, 4))
            return KT_VARIANT_FEW;
        // many: n = 6
        if (is(n, 6))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalAz:
        // az (o)
        // one: i % 10 = 1,2,5,7,8 or i % 100 = 20,50,70,80
        if (is(i % 10, 1, 2, 5, 7, 8) ||
            is(i % 100, 20, 50, 70, 80))
            return KT_VARIANT_ONE;
        // few: i % 10 = 3,4 or i % 1000 = 100,200,300,400,500,600,700,800,900
        if (is(i % 10, 3, 4) ||
            is(i % 1000, 100, 200, 300, 400, 500, 600, 700, 800, 900))
            return KT_VARIANT_FEW;
        // many: i = 0 or i % 10 = 6 or i % 100 = 40,60,90
        if (is(i, 0) ||
            is(i % 10, 6) ||
            is(i % 100, 40, 60, 90))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalBe:
        // be (o)
        // few: n % 10 = 2,3 and n % 100 != 12,13
        if (is(n % 10, 2, 3) && isNot(n % 100, 12, 13))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::ordinalBlo:
        // blo (o)
        // zero: i = 0
        if (is(i, 0))
            return KT_VARIANT_ZERO;
        // one: i = 1
        if (is(i, 1))
            return KT_VARIANT_ONE;
        // few: i = 2,3,4,5,6
        if (is(i, 2, 3, 4, 5, 6))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::ordinalCa:
        // ca (o)
        // one: n = 1,3
        if (is(n, 1, 3))
            return KT_VARIANT_ONE;
        // two: n = 2
        if (is(n, 2))
            return KT_VARIANT_TWO;
        // few: n = 4
        if (is(n, 4))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::ordinalCy:
        // cy (o)
        // zero: n = 0,7,8,9
        if (is(n, 0, 7, 8, 9))
            return KT_VARIANT_ZERO;
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // two: n = 2
        if (is(n, 2))
            return KT_VARIANT_TWO;
        // few: n = 3,4
        if (is(n, 3, 4))
            return KT_VARIANT_FEW;
        // many: n = 5,6
        if (is(n, 5, 6))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalEn:
        // en (o)
        // one: n % 10 = 1 and n % 100 != 11
        if (is(n % 10, 1) && isNot(n % 100, 11))
            return KT_VARIANT_ONE;
        // two: n % 10 = 2 and n % 100 != 12
        if (is(n % 10, 2) && isNot(n % 100, 12))
            return KT_VARIANT_TWO;
        // few: n % 10 = 3 and n % 100 != 13
        if (is(n % 10, 3) && isNot(n % 100, 13))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::ordinalGd:
        // gd (o)
        // one: n = 1,11
        if (is(n, 1, 11))
            return KT_VARIANT_ONE;
        // two: n = 2,12
        if (is(n, 2, 12))
            return KT_VARIANT_TWO;
        // few: n = 3,13
        if (is(n, 3, 13))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::ordinalGu:
        // gu (o) hi (o)
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // two: n = 2,3
        if (is(n, 2, 3))
            return KT_VARIANT_TWO;
        // few: n = 4
        if (is(n, 4))
            return KT_VARIANT_FEW;
        // many: n = 6
        if (is(n, 6))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalHu:
        // hu (o)
        // one: n = 1,5
        if (is(n, 1, 5))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::ordinalIt:
        // it (o) lld (o) sc (o) vec (o)
        // many: n = 11,8,80,800
        if (is(n, 11, 8, 80, 800))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalKa:
        // ka (o)
        // one: i = 1
        if (is(i, 1))
            return KT_VARIANT_ONE;
        // many: i = 0 or i % 100 = 2..20,40,60,80
        if (is(i, 0) ||
            is(i % 100, Range{2, 20}, 40, 60, 80))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalKk:
        // kk (o)
        // many: n % 10 = 6 or n % 10 = 9 or n % 10 = 0 and n != 0
        if (is(n % 10, 6) ||
            is(n % 10, 9) ||
            (is(n % 10, 0) && isNot(n, 0)))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalKok:
        // kok (o) kok-Latn (o) mr (o)
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // two: n = 2,3
        if (is(n, 2, 3))
            return KT_VARIANT_TWO;
        // few: n = 4
        if (is(n, 4))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::ordinalKw:
        // kw (o)
        // one: n = 1..4 or n % 100 = 1..4,21..24,41..44,61..64,81..84
        if (is(n, Range{1, 4}) ||
            is(n % 100, Range{1, 4}, Range{21, 24}, Range{41, 44}, Range{61, 64}, Range{81, 84}))
            return KT_VARIANT_ONE;
        // many: n = 5 or n % 100 = 5
        if (is(n, 5) ||
            is(n % 100, 5))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalLij:
        // lij (o) scn (o)
        // many: n = 11,8,80..89,800..899
        if (is(n, 11, 8, Range{80, 89}, Range{800, 899}))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalMk:
        // mk (o)
        // one: i % 10 = 1 and i % 100 != 11
        if (is(i % 10, 1) && isNot(i % 100, 11))
            return KT_VARIANT_ONE;
        // two: i % 10 = 2 and i % 100 != 12
        if (is(i % 10, 2) && isNot(i % 100, 12))
            return KT_VARIANT_TWO;
        // many: i % 10 = 7,8 and i % 100 != 17,18
        if (is(i % 10, 7, 8) && isNot(i % 100, 17, 18))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalNe:
        // ne (o)
        // one: n = 1..4
        if (is(n, Range{1, 4}))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::ordinalOr:
        // or (o)
        // one: n = 1,5,7..9
        if (is(n, 1, 5, Range{7, 9}))
            return KT_VARIANT_ONE;
        // two: n = 2,3
        if (is(n, 2, 3))
            return KT_VARIANT_TWO;
        // few: n = 4
        if (is(n, 4))
            return KT_VARIANT_FEW;
        // many: n = 6
        if (is(n, 6))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalSq:
        // sq (o)
        // one: n = 1
        if (is(n, 1))
            return KT_VARIANT_ONE;
        // many: n % 10 = 4 and n % 100 != 14
        if (is(n % 10, 4) && isNot(n % 100, 14))
            return KT_VARIANT_MANY;
        break;
    case PluralRule::ordinalSv:
        // sv (o)
        // one: n % 10 = 1,2 and n % 100 != 11,12
        if (is(n % 10, 1, 2) && isNot(n % 100, 11, 12))
            return KT_VARIANT_ONE;
        break;
    case PluralRule::ordinalTk:
        // tk (o)
        // few: n % 10 = 6,9 or n = 10
        if (is(n % 10, 6, 9) ||
            is(n, 10))
            return KT_VARIANT_FEW;
        break;
    case PluralRule::ordinalUk:
        // uk (o)
        // few: n % 10 = 3 and n % 100 != 13
        if (is(n % 10, 3) && isNot(n % 100, 13))
            return KT_VARIANT_FEW;
        break;
    }
    return KT_VARIANT_OTHER;
}

// Each array is in the order of its codes.

inline constexpr PluralLanguage<PluralRule> twoLetters[] = {
    {"af", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ak", "", PluralRule::cardinalAk, PluralRule::alwaysOther},
    {"am", "", PluralRule::cardinalAm, PluralRule::alwaysOther},
    {"an", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ar", "", PluralRule::cardinalAr, PluralRule::alwaysOther},
    {"as", "", PluralRule::cardinalAm, PluralRule::ordinalAs},
    {"az", "", PluralRule::cardinalAf, PluralRule::ordinalAz},
    {"be", "", PluralRule::cardinalBe, PluralRule::ordinalBe},
    {"bg", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"bh", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as bho
    {"bm", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"bn", "", PluralRule::cardinalAm, PluralRule::ordinalAs},
    {"bo", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"br", "", PluralRule::cardinalBr, PluralRule::alwaysOther},
    {"bs", "", PluralRule::cardinalBs, PluralRule::alwaysOther},
    {"ca", "", PluralRule::cardinalCa, PluralRule::ordinalCa},
    {"ce", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"cs", "", PluralRule::cardinalCs, PluralRule::alwaysOther},
    {"cv", "", PluralRule::cardinalBlo, PluralRule::alwaysOther},
    {"cy", "", PluralRule::cardinalCy, PluralRule::ordinalCy},
    {"da", "", PluralRule::cardinalDa, PluralRule::alwaysOther},
    {"de", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"dv", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"dz", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"ee", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"el", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"en", "", PluralRule::cardinalAst, PluralRule::ordinalEn},
    {"eo", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"es", "", PluralRule::cardinalEs, PluralRule::alwaysOther},
    {"et", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"eu", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"fa", "", PluralRule::cardinalAm, PluralRule::alwaysOther},
    {"ff", "", PluralRule::cardinalFf, PluralRule::alwaysOther},
    {"fi", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"fo", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"fr", "", PluralRule::cardinalFr, PluralRule::cardinalAf},
    {"fy", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"ga", "", PluralRule::cardinalGa, PluralRule::cardinalAf},
    {"gd", "", PluralRule::cardinalGd, PluralRule::ordinalGd},
    {"gl", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"gu", "", PluralRule::cardinalAm, PluralRule::ordinalGu},
    {"gv", "", PluralRule::cardinalGv, PluralRule::alwaysOther},
    {"ha", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"he", "", PluralRule::cardinalHe, PluralRule::alwaysOther},
    {"hi", "", PluralRule::cardinalAm, PluralRule::ordinalGu},
    {"hr", "", PluralRule::cardinalBs, PluralRule::alwaysOther},
    {"hu", "", PluralRule::cardinalAf, PluralRule::ordinalHu},
    {"hy", "", PluralRule::cardinalFf, PluralRule::cardinalAf},
    {"ia", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"id", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"ie", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"ig", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"ii", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"in", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as id
    {"io", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"is", "", PluralRule::cardinalIs, PluralRule::alwaysOther},
    {"it", "", PluralRule::cardinalCa, PluralRule::ordinalIt},
    {"iu", "", PluralRule::cardinalIu, PluralRule::alwaysOther},
    {"iw", "", PluralRule::cardinalHe, PluralRule::alwaysOther}, // as he
    {"ja", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"ji", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as yi
    {"jv", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"jw", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"ka", "", PluralRule::cardinalAf, PluralRule::ordinalKa},
    {"kk", "", PluralRule::cardinalAf, PluralRule::ordinalKk},
    {"kl", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"km", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"kn", "", PluralRule::cardinalAm, PluralRule::alwaysOther},
    {"ko", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"ks", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ku", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"kw", "", PluralRule::cardinalKw, PluralRule::ordinalKw},
    {"ky", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"lb", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"lg", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ln", "", PluralRule::cardinalAk, PluralRule::alwaysOther},
    {"lo", "", PluralRule::alwaysOther, PluralRule::cardinalAf},
    {"lt", "", PluralRule::cardinalLt, PluralRule::alwaysOther},
    {"lv", "", PluralRule::cardinalLv, PluralRule::alwaysOther},
    {"mg", "", PluralRule::cardinalAk, PluralRule::alwaysOther},
    {"mk", "", PluralRule::cardinalMk, PluralRule::ordinalMk},
    {"ml", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"mn", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"mo", "", PluralRule::cardinalMo, PluralRule::cardinalAf},
    {"mr", "", PluralRule::cardinalAf, PluralRule::ordinalKok},
    {"ms", "", PluralRule::alwaysOther, PluralRule::cardinalAf},
    {"mt", "", PluralRule::cardinalMt, PluralRule::alwaysOther},
    {"my", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"nb", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"nd", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ne", "", PluralRule::cardinalAf, PluralRule::ordinalNe},
    {"nl", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"nn", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"no", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"nr", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ny", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"om", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"or", "", PluralRule::cardinalAf, PluralRule::ordinalOr},
    {"os", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"pa", "", PluralRule::cardinalAk, PluralRule::alwaysOther},
    {"pl", "", PluralRule::cardinalPl, PluralRule::alwaysOther},
    {"ps", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"pt", "", PluralRule::cardinalPt, PluralRule::alwaysOther},
    {"rm", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ro", "", PluralRule::cardinalMo, PluralRule::cardinalAf},
    {"ru", "", PluralRule::cardinalRu, PluralRule::alwaysOther},
    {"sc", "", PluralRule::cardinalAst, PluralRule::ordinalIt},
    {"sd", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"se", "", PluralRule::cardinalIu, PluralRule::alwaysOther},
    {"sg", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"sh", "", PluralRule::cardinalBs, PluralRule::alwaysOther},
    {"si", "", PluralRule::cardinalSi, PluralRule::alwaysOther},
    {"sk", "", PluralRule::cardinalCs, PluralRule::alwaysOther},
    {"sl", "", PluralRule::cardinalSl, PluralRule::alwaysOther},
    {"sn", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"so", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"sq", "", PluralRule::cardinalAf, PluralRule::ordinalSq},
    {"sr", "", PluralRule::cardinalBs, PluralRule::alwaysOther},
    {"ss", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"st", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"su", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"sv", "", PluralRule::cardinalAst, PluralRule::ordinalSv},
    {"sw", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"ta", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"te", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"th", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"ti", "", PluralRule::cardinalAk, PluralRule::alwaysOther},
    {"tk", "", PluralRule::cardinalAf, PluralRule::ordinalTk},
    {"tl", "", PluralRule::cardinalCeb, PluralRule::cardinalAf},
    {"tn", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"to", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"tr", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ts", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"tw", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as ak
    {"ug", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"uk", "", PluralRule::cardinalRu, PluralRule::ordinalUk},
    {"ur", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"uz", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ve", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"vi", "", PluralRule::alwaysOther, PluralRule::cardinalAf},
    {"vo", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"wa", "", PluralRule::cardinalAk, PluralRule::alwaysOther},
    {"wo", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"xh", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"yi", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"yo", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"zh", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"zu", "", PluralRule::cardinalAm, PluralRule::alwaysOther},
};

inline constexpr PluralLanguage<PluralRule> threeLetters[] = {
    {"adp", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as dz
    {"afr", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as af
    {"aka", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as ak
    {"alb", "", PluralRule::cardinalAf, PluralRule::ordinalSq}, // as sq
    {"als", "", PluralRule::cardinalAf, PluralRule::ordinalSq}, // as sq
    {"amh", "", PluralRule::cardinalAm, PluralRule::alwaysOther}, // as am
    {"ara", "", PluralRule::cardinalAr, PluralRule::alwaysOther}, // as ar
    {"arb", "", PluralRule::cardinalAr, PluralRule::alwaysOther}, // as ar
    {"arg", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as an
    {"arm", "", PluralRule::cardinalFf, PluralRule::cardinalAf}, // as hy
    {"ars", "", PluralRule::cardinalAr, PluralRule::alwaysOther},
    {"asa", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"asm", "", PluralRule::cardinalAm, PluralRule::ordinalAs}, // as as
    {"ast", "", PluralRule::cardinalAst, PluralRule::alwaysOther},
    {"aze", "", PluralRule::cardinalAf, PluralRule::ordinalAz}, // as az
    {"azj", "", PluralRule::cardinalAf, PluralRule::ordinalAz}, // as az
    {"bal", "", PluralRule::cardinalAf, PluralRule::cardinalAf},
    {"bam", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as bm
    {"baq", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as eu
    {"bcc", "", PluralRule::cardinalAf, PluralRule::cardinalAf}, // as bal
    {"bel", "", PluralRule::cardinalBe, PluralRule::ordinalBe}, // as be
    {"bem", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ben", "", PluralRule::cardinalAm, PluralRule::ordinalAs}, // as bn
    {"bez", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"bho", "", PluralRule::cardinalAk, PluralRule::alwaysOther},
    {"bih", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as bho
    {"blo", "", PluralRule::cardinalBlo, PluralRule::ordinalBlo},
    {"bod", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as bo
    {"bos", "", PluralRule::cardinalBs, PluralRule::alwaysOther}, // as bs
    {"bre", "", PluralRule::cardinalBr, PluralRule::alwaysOther}, // as br
    {"brx", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"bul", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as bg
    {"bur", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as my
    {"cat", "", PluralRule::cardinalCa, PluralRule::ordinalCa}, // as ca
    {"ceb", "", PluralRule::cardinalCeb, PluralRule::alwaysOther},
    {"ces", "", PluralRule::cardinalCs, PluralRule::alwaysOther}, // as cs
    {"cgg", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"che", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ce
    {"chi", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as zh
    {"chr", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"chv", "", PluralRule::cardinalBlo, PluralRule::alwaysOther}, // as cv
    {"ckb", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"cld", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as syr
    {"cmn", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as zh
    {"cnr", "", PluralRule::cardinalBs, PluralRule::alwaysOther}, // as sr
    {"cor", "", PluralRule::cardinalKw, PluralRule::ordinalKw}, // as kw
    {"csw", "", PluralRule::cardinalAk, PluralRule::alwaysOther},
    {"cym", "", PluralRule::cardinalCy, PluralRule::ordinalCy}, // as cy
    {"cze", "", PluralRule::cardinalCs, PluralRule::alwaysOther}, // as cs
    {"dan", "", PluralRule::cardinalDa, PluralRule::alwaysOther}, // as da
    {"deu", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as de
    {"dgo", "", PluralRule::cardinalAm, PluralRule::alwaysOther}, // as doi
    {"div", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as dv
    {"doi", "", PluralRule::cardinalAm, PluralRule::alwaysOther},
    {"drh", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as mn
    {"drw", "", PluralRule::cardinalAm, PluralRule::alwaysOther}, // as fa
    {"dsb", "", PluralRule::cardinalDsb, PluralRule::alwaysOther},
    {"dut", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as nl
    {"dzo", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as dz
    {"ekk", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as et
    {"ell", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as el
    {"eng", "", PluralRule::cardinalAst, PluralRule::ordinalEn}, // as en
    {"epo", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as eo
    {"est", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as et
    {"eus", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as eu
    {"ewe", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ee
    {"fao", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as fo
    {"fas", "", PluralRule::cardinalAm, PluralRule::alwaysOther}, // as fa
    {"fat", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as ak
    {"fil", "", PluralRule::cardinalCeb, PluralRule::cardinalAf},
    {"fin", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as fi
    {"fra", "", PluralRule::cardinalFr, PluralRule::cardinalAf}, // as fr
    {"fre", "", PluralRule::cardinalFr, PluralRule::cardinalAf}, // as fr
    {"fry", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as fy
    {"fuc", "", PluralRule::cardinalFf, PluralRule::alwaysOther}, // as ff
    {"ful", "", PluralRule::cardinalFf, PluralRule::alwaysOther}, // as ff
    {"fur", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"gaz", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as om
    {"geo", "", PluralRule::cardinalAf, PluralRule::ordinalKa}, // as ka
    {"ger", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as de
    {"gla", "", PluralRule::cardinalGd, PluralRule::ordinalGd}, // as gd
    {"gle", "", PluralRule::cardinalGa, PluralRule::cardinalAf}, // as ga
    {"glg", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as gl
    {"glv", "", PluralRule::cardinalGv, PluralRule::alwaysOther}, // as gv
    {"gom", "", PluralRule::cardinalAm, PluralRule::ordinalKok}, // as kok
    {"gre", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as el
    {"gsw", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"guj", "", PluralRule::cardinalAm, PluralRule::ordinalGu}, // as gu
    {"guw", "", PluralRule::cardinalAk, PluralRule::alwaysOther},
    {"hau", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ha
    {"haw", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"hbs", "", PluralRule::cardinalBs, PluralRule::alwaysOther}, // as sr
    {"heb", "", PluralRule::cardinalHe, PluralRule::alwaysOther}, // as he
    {"hin", "", PluralRule::cardinalAm, PluralRule::ordinalGu}, // as hi
    {"hnj", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"hrv", "", PluralRule::cardinalBs, PluralRule::alwaysOther}, // as hr
    {"hsb", "", PluralRule::cardinalDsb, PluralRule::alwaysOther},
    {"hun", "", PluralRule::cardinalAf, PluralRule::ordinalHu}, // as hu
    {"hye", "", PluralRule::cardinalFf, PluralRule::cardinalAf}, // as hy
    {"ibo", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as ig
    {"ice", "", PluralRule::cardinalIs, PluralRule::alwaysOther}, // as is
    {"ido", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as io
    {"iii", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as ii
    {"ike", "", PluralRule::cardinalIu, PluralRule::alwaysOther}, // as iu
    {"iku", "", PluralRule::cardinalIu, PluralRule::alwaysOther}, // as iu
    {"ile", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as ie
    {"ina", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as ia
    {"ind", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as id
    {"isl", "", PluralRule::cardinalIs, PluralRule::alwaysOther}, // as is
    {"ita", "", PluralRule::cardinalCa, PluralRule::ordinalIt}, // as it
    {"jav", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as jv
    {"jbo", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"jgo", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"jmc", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"jpn", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as ja
    {"kab", "", PluralRule::cardinalFf, PluralRule::alwaysOther},
    {"kaj", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"kal", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as kl
    {"kan", "", PluralRule::cardinalAm, PluralRule::alwaysOther}, // as kn
    {"kas", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ks
    {"kat", "", PluralRule::cardinalAf, PluralRule::ordinalKa}, // as ka
    {"kaz", "", PluralRule::cardinalAf, PluralRule::ordinalKk}, // as kk
    {"kcg", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"kde", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"kea", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"khk", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as mn
    {"khm", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as km
    {"kir", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ky
    {"kkj", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"kmr", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ku
    {"kok", "", PluralRule::cardinalAm, PluralRule::ordinalKok},
    {"kor", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as ko
    {"ksb", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ksh", "", PluralRule::cardinalBlo, PluralRule::alwaysOther},
    {"kur", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ku
    {"lag", "", PluralRule::cardinalLag, PluralRule::alwaysOther},
    {"lao", "", PluralRule::alwaysOther, PluralRule::cardinalAf}, // as lo
    {"lav", "", PluralRule::cardinalLv, PluralRule::alwaysOther}, // as lv
    {"lij", "", PluralRule::cardinalAst, PluralRule::ordinalLij},
    {"lin", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as ln
    {"lit", "", PluralRule::cardinalLt, PluralRule::alwaysOther}, // as lt
    {"lkt", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"lld", "", PluralRule::cardinalCa, PluralRule::ordinalIt},
    {"ltz", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as lb
    {"lug", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as lg
    {"lvs", "", PluralRule::cardinalLv, PluralRule::alwaysOther}, // as lv
    {"mac", "", PluralRule::cardinalMk, PluralRule::ordinalMk}, // as mk
    {"mal", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ml
    {"mar", "", PluralRule::cardinalAf, PluralRule::ordinalKok}, // as mr
    {"mas", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"may", "", PluralRule::alwaysOther, PluralRule::cardinalAf}, // as ms
    {"mgo", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"mkd", "", PluralRule::cardinalMk, PluralRule::ordinalMk}, // as mk
    {"mlg", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as mg
    {"mlt", "", PluralRule::cardinalMt, PluralRule::alwaysOther}, // as mt
    {"mol", "", PluralRule::cardinalMo, PluralRule::cardinalAf}, // as ro
    {"mon", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as mn
    {"msa", "", PluralRule::alwaysOther, PluralRule::cardinalAf}, // as ms
    {"mya", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as my
    {"nah", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"naq", "", PluralRule::cardinalIu, PluralRule::alwaysOther},
    {"nbl", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as nr
    {"nde", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as nd
    {"nep", "", PluralRule::cardinalAf, PluralRule::ordinalNe}, // as ne
    {"nld", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as nl
    {"nnh", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"nno", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as nn
    {"nob", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as nb
    {"nor", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as no
    {"npi", "", PluralRule::cardinalAf, PluralRule::ordinalNe}, // as ne
    {"nqo", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"nso", "", PluralRule::cardinalAk, PluralRule::alwaysOther},
    {"nya", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ny
    {"nyn", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ori", "", PluralRule::cardinalAf, PluralRule::ordinalOr}, // as or
    {"orm", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as om
    {"ory", "", PluralRule::cardinalAf, PluralRule::ordinalOr}, // as or
    {"osa", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"oss", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as os
    {"pan", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as pa
    {"pap", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"pbu", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ps
    {"pcm", "", PluralRule::cardinalAm, PluralRule::alwaysOther},
    {"per", "", PluralRule::cardinalAm, PluralRule::alwaysOther}, // as fa
    {"pes", "", PluralRule::cardinalAm, PluralRule::alwaysOther}, // as fa
    {"plt", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as mg
    {"pol", "", PluralRule::cardinalPl, PluralRule::alwaysOther}, // as pl
    {"por", "", PluralRule::cardinalPt, PluralRule::alwaysOther}, // as pt
    {"prg", "", PluralRule::cardinalLv, PluralRule::alwaysOther},
    {"prp", "", PluralRule::cardinalAm, PluralRule::ordinalGu}, // as gu
    {"prs", "", PluralRule::cardinalAm, PluralRule::alwaysOther}, // as fa
    {"pus", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ps
    {"rof", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"roh", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as rm
    {"ron", "", PluralRule::cardinalMo, PluralRule::cardinalAf}, // as ro
    {"rum", "", PluralRule::cardinalMo, PluralRule::cardinalAf}, // as ro
    {"rus", "", PluralRule::cardinalRu, PluralRule::alwaysOther}, // as ru
    {"rwk", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"sag", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as sg
    {"sah", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"saq", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"sat", "", PluralRule::cardinalIu, PluralRule::alwaysOther},
    {"scc", "", PluralRule::cardinalBs, PluralRule::alwaysOther}, // as sr
    {"scn", "", PluralRule::cardinalCa, PluralRule::ordinalLij},
    {"scr", "", PluralRule::cardinalBs, PluralRule::alwaysOther}, // as hr
    {"sdh", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"seh", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ses", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"sgs", "", PluralRule::cardinalSgs, PluralRule::alwaysOther},
    {"shi", "", PluralRule::cardinalShi, PluralRule::alwaysOther},
    {"sin", "", PluralRule::cardinalSi, PluralRule::alwaysOther}, // as si
    {"slk", "", PluralRule::cardinalCs, PluralRule::alwaysOther}, // as sk
    {"slo", "", PluralRule::cardinalCs, PluralRule::alwaysOther}, // as sk
    {"slv", "", PluralRule::cardinalSl, PluralRule::alwaysOther}, // as sl
    {"sma", "", PluralRule::cardinalIu, PluralRule::alwaysOther},
    {"sme", "", PluralRule::cardinalIu, PluralRule::alwaysOther}, // as se
    {"smi", "", PluralRule::cardinalIu, PluralRule::alwaysOther},
    {"smj", "", PluralRule::cardinalIu, PluralRule::alwaysOther},
    {"smn", "", PluralRule::cardinalIu, PluralRule::alwaysOther},
    {"sms", "", PluralRule::cardinalIu, PluralRule::alwaysOther},
    {"sna", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as sn
    {"snd", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as sd
    {"som", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as so
    {"sot", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as st
    {"spa", "", PluralRule::cardinalEs, PluralRule::alwaysOther}, // as es
    {"sqi", "", PluralRule::cardinalAf, PluralRule::ordinalSq}, // as sq
    {"src", "", PluralRule::cardinalAst, PluralRule::ordinalIt}, // as sc
    {"srd", "", PluralRule::cardinalAst, PluralRule::ordinalIt}, // as sc
    {"srp", "", PluralRule::cardinalBs, PluralRule::alwaysOther}, // as sr
    {"ssw", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ss
    {"ssy", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"sun", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as su
    {"swa", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as sw
    {"swc", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as sw
    {"swe", "", PluralRule::cardinalAst, PluralRule::ordinalSv}, // as sv
    {"swh", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as sw
    {"syr", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"tam", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ta
    {"tel", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as te
    {"teo", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"tgl", "", PluralRule::cardinalCeb, PluralRule::cardinalAf}, // as fil
    {"tha", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as th
    {"tib", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as bo
    {"tig", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"tir", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as ti
    {"tnf", "", PluralRule::cardinalAm, PluralRule::alwaysOther}, // as fa
    {"ton", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as to
    {"tpi", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"tsn", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as tn
    {"tso", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ts
    {"tuk", "", PluralRule::cardinalAf, PluralRule::ordinalTk}, // as tk
    {"tur", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as tr
    {"twi", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as ak
    {"tzm", "", PluralRule::cardinalTzm, PluralRule::alwaysOther},
    {"uig", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ug
    {"ukr", "", PluralRule::cardinalRu, PluralRule::ordinalUk}, // as uk
    {"und", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"urd", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as ur
    {"uzb", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as uz
    {"uzn", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as uz
    {"vec", "", PluralRule::cardinalCa, PluralRule::ordinalIt},
    {"ven", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as ve
    {"vie", "", PluralRule::alwaysOther, PluralRule::cardinalAf}, // as vi
    {"vol", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as vo
    {"vun", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"wae", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"wel", "", PluralRule::cardinalCy, PluralRule::ordinalCy}, // as cy
    {"wln", "", PluralRule::cardinalAk, PluralRule::alwaysOther}, // as wa
    {"wol", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as wo
    {"xho", "", PluralRule::cardinalAf, PluralRule::alwaysOther}, // as xh
    {"xog", "", PluralRule::cardinalAf, PluralRule::alwaysOther},
    {"ydd", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as yi
    {"yid", "", PluralRule::cardinalAst, PluralRule::alwaysOther}, // as yi
    {"yor", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as yo
    {"yue", "", PluralRule::alwaysOther, PluralRule::alwaysOther},
    {"zho", "", PluralRule::alwaysOther, PluralRule::alwaysOther}, // as zh
    {"zsm", "", PluralRule::alwaysOther, PluralRule::cardinalAf}, // as ms
    {"zul", "", PluralRule::cardinalAm, PluralRule::alwaysOther}, // as zu
};

inline constexpr PluralLanguage<PluralRule> regions[] = {
    {"pt", "AO", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
    {"pt", "CH", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
    {"pt", "CV", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
    {"pt", "FR", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
    {"pt", "GQ", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
    {"pt", "GW", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
    {"pt", "LU", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
    {"pt", "MO", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
    {"pt", "MZ", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
    {"pt", "PT", PluralRule::cardinalCa, PluralRule::alwaysOther},
    {"pt", "ST", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
    {"pt", "TL", PluralRule::cardinalCa, PluralRule::alwaysOther}, // as pt-PT
};

} // namespace kelto::plural_table
// clang-format on

#endif
