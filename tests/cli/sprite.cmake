# sprite command tests.
