#pragma once

#include "Memory.h"
#include "Messages.h"
#include "Reader/Error.h"

#include <exception>
#include <new>
#include <optional>

/// Runs a part of the program. Gives what is to be said where it fails; where memory runs out, the program ends.
template <class Part>
std::optional<Messages::Message> failureOf(Part part) {
    try {
        part();
        return std::nullopt;
    } catch (const Reader::Error& error) {
        return Messages::messageFor(error);
    } catch (const Messages::Failure& failure) {
        return failure.message();
    } catch (const std::bad_alloc&) {
        Memory::endProgram();
    } catch (const std::exception& error) {
        return Messages::unexpected(error.what());
    }
}
