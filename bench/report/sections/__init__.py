"""The chapters of the report, in their order."""

from . import (collections, files, filtering, growth, messages, orderings, preferences, property_lists, start_up, values)

SECTIONS = [
    filtering.SECTION, orderings.SECTION, preferences.SECTION, property_lists.SECTION, messages.SECTION,
    values.SECTION, collections.SECTION, files.SECTION, start_up.SECTION, growth.SECTION,
]
