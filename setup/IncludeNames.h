// What xunWriteItemTypeIncludes does with the idents and texts of the
// registries: each ident becomes the name of a constant in C, Pascal,
// Fortran and C#, each description the comment beside it, both written as
// they are. These functions tell, for the checks, where that gives include
// files that do not compile.
#pragma once

#include <string>

// Why name is no valid constant name in one or more of the four languages:
// "not a valid constant name in C, Pascal, Fortran and C#: it contains a
// line break", "... in Fortran: it starts with '_'", and the like; "" when
// it is one in all four. The rules: a letter first (Fortran allows no '_'
// there), then letters, digits and '_', at most 63 characters (Fortran),
// and no keyword of C, C# (as written) or Pascal (in any case).
std::string xunConstantNameProblem_(const std::string& name);

// Why text breaks the comment it is written into: "contains a line break,
// which ends the comments of the Fortran and C# include files" (the rest of
// the text becomes code), or contains "*/" (which ends C's comment) or "*)"
// (Pascal's); "" when none.
std::string xunCommentTextProblem_(const std::string& text);

// name in lower case (Pascal and Fortran ignore the case of names).
std::string xunFoldedName_(const std::string& name);
