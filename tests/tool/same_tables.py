"""python3 -m same_tables A B: whether two table files hold the same tables, whatever files they were made from."""
import json
import sys

one, other = (dict(json.load(open(path)), inputs=None) for path in sys.argv[1:])
sys.exit(next((f"{' and '.join(sys.argv[1:])} differ in {key}" for key in one if one[key] != other.get(key)), 0))
