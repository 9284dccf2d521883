"""python3 -m same_tables A B: whether two table files hold the same tables, whatever captures they were made from."""
import json
import sys


def tables_of(path):
    document = json.load(open(path))
    del document["inputs"], document["parameters"]["average"]
    return document


one, other = map(tables_of, sys.argv[1:])
sys.exit(next((f"{' and '.join(sys.argv[1:])} differ in {key}" for key in one if one[key] != other.get(key)), 0))
