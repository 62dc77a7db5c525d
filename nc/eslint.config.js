// What the compiler's warnings are for the C++ side: findings are errors, and "npm run lint" is a step of .ci/run.
import js from '@eslint/js';
import globals from 'globals';

export default [
  js.configs.recommended,
  {
    languageOptions: { ecmaVersion: 2023, sourceType: 'module', globals: globals.node },
    linterOptions: { reportUnusedDisableDirectives: 'error', reportUnusedInlineConfigs: 'error' },
    rules: {
      'array-callback-return': 'error',
      'consistent-return': 'error',
      curly: ['error', 'all'],
      'default-case-last': 'error',
      eqeqeq: 'error',
      'no-constructor-return': 'error',
      'no-else-return': 'error',
      'no-implicit-coercion': 'error',
      'no-lonely-if': 'error',
      'no-param-reassign': 'error',
      'no-promise-executor-return': 'error',
      'no-return-assign': 'error',
      'no-self-compare': 'error',
      'no-shadow': 'error',
      'no-throw-literal': 'error',
      'no-unreachable-loop': 'error',
      'no-unused-expressions': 'error',
      // What a function uses when it is called, later, may stand below it.
      'no-use-before-define': ['error', { functions: false, variables: false }],
      'no-useless-concat': 'error',
      'no-var': 'error',
      'object-shorthand': 'error',
      'prefer-const': 'error',
      'prefer-promise-reject-errors': 'error',
    },
  },
];
