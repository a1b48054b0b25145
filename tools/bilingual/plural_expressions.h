/**
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

constexpr PluralExpression pluralExpressions[] = {
    {"other",
     "0"},
    {"one other",
     "n==1 ? 0 : 1"},
    {"one other",
     "n<=1 ? 0 : 1"},
    {"one other",
     "n==0 || n==1 ? 0 : 1"},
    {"zero one two few many other",
     "n==0 ? 0 : n==1 ? 1 : n==2 ? 2 : (n%100>=3 && n%100<=10) ? 3 : (n%100>=11 && n%100<=99) ? 4 : 5"},
    {"one few many",
     "n%10==1 && n%100!=11 ? 0 : (n%10>=2 && n%10<=4) && (n%100<12 || n%100>14) ? 1 : 2"},
    {"zero one other",
     "n==0 ? 0 : n==1 ? 1 : 2"},
    {"one two few many other",
     "n%10==1 && n%100!=11 && n%100!=71 && n%100!=91 ? 0 : n%10==2 && n%100!=12 && n%100!=72 && n%100!=92 "
     "? 1 : ((n%10>=3 && n%10<=4) || n%10==9) && (n%100<10 || n%100>19) && (n%100<70 || n%100>79) && "
     "(n%100<90 || n%100>99) ? 2 : n!=0 && n%1000000==0 ? 3 : 4"},
    {"one few other",
     "n%10==1 && n%100!=11 ? 0 : (n%10>=2 && n%10<=4) && (n%100<12 || n%100>14) ? 1 : 2"},
    {"one many other",
     "n==1 ? 0 : n!=0 && n%1000000==0 ? 1 : 2"},
    {"one other",
     "(n==1 || n==2 || n==3) || (n%10!=4 && n%10!=6 && n%10!=9) ? 0 : 1"},
    {"one few other",
     "n==1 ? 0 : (n>=2 && n<=4) ? 1 : 2"},
    {"zero one two few many other",
     "n==0 ? 0 : n==1 ? 1 : n==2 ? 2 : n==3 ? 3 : n==6 ? 4 : 5"},
    {"one two few other",
     "n%100==1 ? 0 : n%100==2 ? 1 : (n%100>=3 && n%100<=4) ? 2 : 3"},
    {"one other",
     "(n==0 || n==1) ? 0 : 1"},
    {"one many other",
     "(n==0 || n==1) ? 0 : n!=0 && n%1000000==0 ? 1 : 2"},
    {"one two few many other",
     "n==1 ? 0 : n==2 ? 1 : (n>=3 && n<=6) ? 2 : (n>=7 && n<=10) ? 3 : 4"},
    {"one two few other",
     "(n==1 || n==11) ? 0 : (n==2 || n==12) ? 1 : ((n>=3 && n<=10) || (n>=13 && n<=19)) ? 2 : 3"},
    {"one two few other",
     "n%10==1 ? 0 : n%10==2 ? 1 : (n%100==0 || n%100==20 || n%100==40 || n%100==60 || n%100==80) ? 2 : 3"},
    {"one two other",
     "n==1 ? 0 : n==2 ? 1 : 2"},
    {"one other",
     "n%10==1 && n%100!=11 ? 0 : 1"},
    {"zero one two few many other",
     "n==0 ? 0 : n==1 ? 1 : (n%100==2 || n%100==22 || n%100==42 || n%100==62 || n%100==82) || (n%1000==0 "
     "&& ((n%100000>=1000 && n%100000<=20000) || n%100000==40000 || n%100000==60000 || n%100000==80000)) "
     "|| (n!=0 && n%1000000==100000) ? 2 : (n%100==3 || n%100==23 || n%100==43 || n%100==63 || n%100==83) "
     "? 3 : n!=1 && (n%100==1 || n%100==21 || n%100==41 || n%100==61 || n%100==81) ? 4 : 5"},
    {"zero one other",
     "n==0 ? 0 : (n==0 || n==1) && n!=0 ? 1 : 2"},
    {"one few other",
     "n%10==1 && (n%100<11 || n%100>19) ? 0 : (n%10>=2 && n%10<=9) && (n%100<11 || n%100>19) ? 1 : 2"},
    {"zero one other",
     "n%10==0 || ((n%100>=11 && n%100<=19)) ? 0 : n%10==1 && n%100!=11 ? 1 : 2"},
    {"one few other",
     "n==1 ? 0 : n==0 || (n!=1 && (n%100>=1 && n%100<=19)) ? 1 : 2"},
    {"one two few many other",
     "n==1 ? 0 : n==2 ? 1 : n==0 || ((n%100>=3 && n%100<=10)) ? 2 : (n%100>=11 && n%100<=19) ? 3 : 4"},
    {"one few many",
     "n==1 ? 0 : (n%10>=2 && n%10<=4) && (n%100<12 || n%100>14) ? 1 : 2"},
    {"one many other",
     "n<=1 ? 0 : n!=0 && n%1000000==0 ? 1 : 2"},
    {"one two few other",
     "n%10==1 && n%100!=11 ? 0 : n==2 ? 1 : n!=2 && (n%10>=2 && n%10<=9) && (n%100<11 || n%100>19) ? 2 : 3"
     ""},
    {"one few other",
     "n==0 || n==1 ? 0 : (n>=2 && n<=10) ? 1 : 2"},
    {"one other",
     "n<=1 || ((n>=11 && n<=99)) ? 0 : 1"},
};

} // namespace tool::bilingual

#endif
