#pragma once

#include "Reader/Document.h"

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

// Threads: each function reads only its argument; see Document.

namespace Reader {

/// An object of a project. Its fields and those of its base class parts stand side by side, as the conversion to JSON
/// would write them; a reference is a link, {"@meta_reference": id}, also to an object that is embedded in this one.
struct GraphObject {
    std::string className;
    nlohmann::json fields = nlohmann::json::object();
};

/// All objects of a document, in one shape for both forms and every version. What archives have for their own
/// housekeeping is left out: predeclarations, sizes and indexes of arrays.
struct ObjectGraph {
    std::map<unsigned long long, GraphObject> objects;
    unsigned long long root = 0;
    /// Members of the document beside the project, such as those of a JSON file.
    nlohmann::json envelope = nlohmann::json::object();

    /// The object of that id; null if there is none.
    const GraphObject* find(unsigned long long id) const;
    /// The object that a field of the object refers to; null if there is none.
    const GraphObject* target(const GraphObject& object, const std::string& field) const;
};

/// Reads all objects. Depth costs memory, not stack.
ObjectGraph readObjects(const Document& document);

/// A value as people and programs are shown it: a link becomes {"class", "id"}, with "name" if the object has one; the
/// rest of a long list becomes a text such as "and 5 more", and what is nested deeply "...".
nlohmann::json shown(const nlohmann::json& value, const ObjectGraph& graph, int levels = 4);

/// Leaves out what no references lead to from the root object.
ObjectGraph reachable(ObjectGraph graph);

/// The ids of the links in a value, in order. Depth costs memory, not stack.
std::vector<unsigned long long> linksIn(const nlohmann::json& value);

/// The clip that each object belongs to: a clip, its timing, and what only leads there from them. An object that several
/// clips use belongs to the first. Tracks, timelines and other clips belong to none.
std::unordered_map<unsigned long long, unsigned long long> clipsOfObjects(const ObjectGraph& graph);

} // namespace Reader
