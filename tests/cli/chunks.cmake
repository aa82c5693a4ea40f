# chunks command tests.
