#!/usr/bin/env bash
echo "behaviour: nothing yet"
