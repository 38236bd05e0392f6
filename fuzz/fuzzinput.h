#pragma once

#include <QString>
#include <QVariant>

#include <cstddef>

class FuzzedDataProvider;

/** Values of the kinds the fuzz targets feed in, taken from the fuzzer's bytes. */
namespace FuzzInput {

/**
 * Text of up to @p maxBytes bytes, read as UTF-8 (invalid sequences too), as
 * UTF-16 (lone surrogates too) or as Latin-1.
 */
QString text(FuzzedDataProvider &data, std::size_t maxBytes);

/** Any double: NaN, the infinities, subnormals and negative zero too. */
double number(FuzzedDataProvider &data);

/**
 * A value of any type a settings store or a recording property may hold:
 * none, a boolean, text, whole and real numbers, a list of texts, bytes, or
 * one of the orientation words in an odd spelling.
 */
QVariant variant(FuzzedDataProvider &data);

/**
 * The path of a file named @p name that holds @p bytes: one file per
 * fuzzing process and name, rewritten for every input. Aborts when it
 * cannot be written.
 */
QString file(const char *name, const quint8 *bytes, std::size_t size);

} // namespace FuzzInput
