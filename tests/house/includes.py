"""Names of the standard library come from a header that the file, or a file of the tree that it includes, names itself.

Compilers differ in what else a header brings along: a source that goes by one of them does not compile with the next.
Precise for the names below, which are those that have been missed.
"""
import re

import tree

ANY_INCLUDE = re.compile(r"^\s*#\s*include\s*<([^>]+)>", re.M)

# Header: what needs it, and other headers that are documented to declare it or that this tree takes for it.
NEEDS = {
    "algorithm": (r"std::(?:sort|stable_sort|find_if|find_if_not|find_first_of|any_of|all_of|none_of|remove_if|"
                  r"transform|count_if|count|clamp|minmax|minmax_element|generate|shuffle|unique|min_element|"
                  r"max_element|search|rotate|replace|replace_if|copy_if|for_each|adjacent_find|partition|"
                  r"nth_element|binary_search|set_difference|reverse|is_sorted|find|equal|fill|copy|ranges::\w+)\s*\(", ()),
    "array": (r"std::(?:array|to_array)\b", ()),
    "atomic": (r"std::atomic\b", ()),
    "chrono": (r"std::chrono\b", ()),
    "cmath": (r"std::(?:sqrt|lround|round|floor|ceil|pow)\s*\(", ()),
    "condition_variable": (r"std::condition_variable\b", ()),
    "cstdint": (r"\bu?int(?:8|16|32|64|ptr)_t\b", ("windows.h", "stdint.h")),
    "cstdlib": (r"std::(?:strtol|strtoul|abort|exit|getenv|abs)\s*\(", ("cmath",)),
    "cstring": (r"std::(?:memcpy|memcmp|memset|strlen)\s*\(", ("string.h",)),
    "functional": (r"std::(?:function|bind|hash|less|greater|reference_wrapper)\b", ()),
    "initializer_list": (r"std::initializer_list\b", ("vector", "string", "map", "set")),
    "iterator": (r"std::(?:back_inserter|istreambuf_iterator|next|prev|size)\b",
                 ("vector", "string", "array", "map", "set", "string_view")),
    "limits": (r"std::numeric_limits\b", ()),
    "map": (r"std::map\b", ()),
    "memory": (r"std::(?:unique_ptr|shared_ptr|make_unique|make_shared|weak_ptr)\b", ()),
    "mutex": (r"std::(?:mutex|timed_mutex|recursive_mutex|lock_guard|scoped_lock|unique_lock|once_flag|call_once)\b",
              ("shared_mutex", "condition_variable")),
    "numeric": (r"std::(?:accumulate|iota|gcd)\b", ()),
    "optional": (r"std::(?:optional|nullopt)\b", ()),
    "random": (r"std::(?:minstd_rand|mt19937|uniform_int_distribution)\b", ()),
    "set": (r"std::set\b", ()),
    "span": (r"std::span\b", ()),
    "sstream": (r"std::w?[io]?stringstream\b", ()),
    "stdexcept": (r"std::(?:runtime_error|logic_error|out_of_range|invalid_argument)\b", ()),
    "string": (r"std::(?:w?string|to_w?string)\b", ()),
    "string_view": (r"std::w?string_view\b", ("string",)),
    "system_error": (r"std::(?:error_code|system_error)\b", ("filesystem", "mutex", "thread", "string")),
    "thread": (r"std::(?:thread|this_thread)\b", ()),
    "tuple": (r"std::(?:tuple|tie)\b", ("map", "memory", "functional")),
    "utility": (r"std::(?:exchange|pair|swap|move)\b", ("memory", "vector", "map", "string", "algorithm", "functional",
                                                       "optional", "tuple", "mutex", "array", "thread", "set")),
    "variant": (r"std::variant\b", ()),
    "vector": (r"std::vector\b", ()),
}
NEEDS = {header: (re.compile(pattern), {header, *others}) for header, (pattern, others) in NEEDS.items()}


def precompiled():
    """What every source below tests/ gets from its precompiled header."""
    text = tree.read("tests/CMakeLists.txt")
    block = text[text.index("target_precompile_headers(pixora_test_headers"):]
    return set(re.findall(r"<([\w./]+)>", block[:block.index(")")]))


def named_headers(path, known):
    """The system's headers that a file has from includes of its own and of the tree's files."""
    if path not in known:
        known[path] = set()  # a circle ends here
        text = tree.read(path)
        known[path].update(ANY_INCLUDE.findall(text))
        for other in tree.includes(path):
            known[path] |= named_headers(other, known)
    return known[path]


def missing(path, named):
    text = re.sub(r"//.*", "", tree.read(path))
    for header, (pattern, enough) in NEEDS.items():
        use = pattern.search(text)
        if use and not enough & named:
            yield f"{path}:{text.count(chr(10), 0, use.start()) + 1}: {use[0].rstrip(' (')} without <{header}>"


def main():
    known = {}
    given = precompiled()
    breaches = []
    for path in tree.files("*.h", "*.cpp"):
        named = named_headers(path, known) | (given if path.startswith("tests/") and path.endswith(".cpp") else set())
        breaches += missing(path, named)
    return breaches
