#pragma once

// The engine's public numbers of what is wrong in a statement; host/jet/format/error.h has the
// others.
namespace sg::sql {

enum SyntaxError : int {
    HavingInCrosstab = 3092,
    NoStatement = 3129,
    DeleteSyntax = 3130,
    FromSyntax = 3131,
    GroupBySyntax = 3132,
    HavingSyntax = 3133,
    InsertSyntax = 3134,
    JoinSyntax = 3135,
    OrderBySyntax = 3138,
    ParametersSyntax = 3139,
    ProcedureSyntax = 3140,
    SelectSyntax = 3141,
    TextAfterStatement = 3142,
    TransformSyntax = 3143,
    UpdateSyntax = 3144,
    WhereSyntax = 3145,
    ConstraintSyntax = 3289,
    CreateTableSyntax = 3290,
    CreateIndexSyntax = 3291,
    FieldSyntax = 3292,
    AlterTableSyntax = 3293,
    DropSyntax = 3295,
    InvalidTop = 3308,
    UnionSyntax = 3319,
    TooComplex = 3360,
};

}  // namespace sg::sql
