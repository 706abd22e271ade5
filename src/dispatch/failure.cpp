#include "failure.h"

#include <utility>

namespace kestrune {

Failure::Failure(ErrorNumber number, QString text, QString source)
    : number_(number), text_(std::move(text)), source_(std::move(source)), utf8_(text_.toUtf8())
{}

} // namespace kestrune
